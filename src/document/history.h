// The steps that can be taken back and forth again, as data.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "store/change_log.h"

namespace ormel {

/// One act of the user.  Drawing a string takes several commands; while it is being drawn the step is open
/// and keeps the rows of each command apart.
struct UndoStep {
  std::string name;
  std::vector<std::vector<RowChange>> parts;
};

class History {
 public:
  void Clear();
  /// A command has ended.  `open`: the act goes on with the next command.
  void Add(std::vector<RowChange> rows, bool open);
  /// Ends an act that a command without changes has ended.
  void Close();
  bool open() const { return open_; }
  /// The last part of an open step, for taking it back alone; nullptr when it is the first one.
  const std::vector<RowChange>* LastPart() const;
  void DropLastPart();

  /// nullptr when there is none, and while a step is open.
  const UndoStep* ToUndo() const;
  const UndoStep* ToRedo() const;
  /// Moves between the two; behind the last one nothing is left to redo.
  void Undone() { --position_; }
  void Redone() { ++position_; }
  /// The step that was closed last gets its name.
  UndoStep* Unnamed();
  std::size_t size() const { return steps_.size(); }
  std::size_t position() const { return position_; }  ///< steps that are done

 private:
  std::vector<UndoStep> steps_;
  std::size_t position_ = 0;
  bool open_ = false;
};

}  // namespace ormel
