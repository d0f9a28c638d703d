// The open project as the commands change it: what was done can be taken back.
//
// One for a controller, made where the program is composed.  It listens to the change records of all
// commands; the steps last as long as the project is open.
#pragma once

#include <string>
#include <vector>

#include "core/changes.h"
#include "document/elements.h"
#include "document/history.h"
#include "document/hit_index.h"

namespace ormel {

struct Ormel;

class Document final : public ChangeListener {
 public:
  explicit Document(Ormel& ormel);
  ~Document() override;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  bool CanUndo() const { return history_.ToUndo() != nullptr; }
  bool CanRedo() const { return history_.ToRedo() != nullptr; }
  /// "Add Well"; empty when there is nothing to take back.
  std::string UndoName() const;
  std::string RedoName() const;

  /// One step back, or forth; the record that the listeners were told, without rows when there was no step.
  /// For use within a command.  Throws StoreError, and forgets the history, when the project does not hold
  /// what it should.
  ChangeRecord Undo() { return Go(true); }
  ChangeRecord Redo() { return Go(false); }
  /// The last command of an act under way, which goes on: a vertex of a string being drawn.  Not its first
  /// one, from which the act lives.
  ChangeRecord UndoPart();

  /// No way back from here.
  void Forget();

  /// The nearest vertex, whatever its distance.
  HitIndex::Hit NearestVertex(MapPoint at) { return hits_.Nearest(ormel_, at); }

  /// All elements that are selected, each once, in the order of ElementId.  One alone is the controller's
  /// `selection` as well, which knows its vertex; with several that one is empty.
  std::vector<ElementId> selected;
  /// Within the running command it has been decided whether the solution stays.
  bool solution_decided = false;

  const History& history() const { return history_; }
  void CommandEnded(const ChangeRecord& record) override;

 private:
  ChangeRecord Go(bool back);
  ChangeRecord Apply(const std::vector<RowChange>& rows, bool back);
  /// Captions and state of the two menu items.
  void ShowInMenus();

  Ormel& ormel_;
  History history_;
  HitIndex hits_;
  bool applying_ = false;
};

}  // namespace ormel
