#include "document/document.h"

#include "core/ormel.h"
#include "document/fields.h"
#include "document/record.h"
#include "store/database.h"

namespace ormel {

Document::Document(Ormel& ormel) : ormel_(ormel) {
  ormel.changes.tables = UndoneTables();
  ormel.changes.Subscribe(*this);
  ormel.ports.document = this;
  if (ormel.project.db != nullptr) ormel.project.db->WatchChanges(ormel.changes.tables);
  ShowInMenus();
}

Document::~Document() {
  ormel_.changes.Unsubscribe(*this);
  ormel_.ports.document = nullptr;
}

std::string Document::UndoName() const {
  const UndoStep* step = history_.ToUndo();
  return step == nullptr ? std::string() : step->name;
}

std::string Document::RedoName() const {
  const UndoStep* step = history_.ToRedo();
  return step == nullptr ? std::string() : step->name;
}

void Document::Forget() {
  if (ormel_.project.db != nullptr && ormel_.project.db->IsOpen()) ormel_.project.db->TakeChanges();
  history_.Clear();
  ShowInMenus();
}

void Document::CommandEnded(const ChangeRecord& record) {
  hits_.Follow(ormel_, record);
  if (applying_) return;
  if (record.project_replaced) {
    history_.Clear();
  } else {
    history_.Add(UndoneRows(record.rows), ormel_.mouse.MouseMode == MouseMode::kDigitize);
    if (UndoStep* step = history_.Unnamed()) step->name = ActionName(ormel_, step->parts.front());
  }
  ShowInMenus();
}

ChangeRecord Document::Apply(const std::vector<RowChange>& rows, bool back) {
  ChangeRecord record;
  record.command = back ? kUndoRecord : kRedoRecord;
  try {
    ApplyRows(ormel_, rows, back);
    record.rows = ormel_.db().TakeChanges();
  } catch (...) {
    Forget();
    throw;
  }
  struct Applying {
    bool& flag;
    ~Applying() { flag = false; }
  } applying{applying_};
  applying_ = true;
  ormel_.changes.Tell(record);
  return record;
}

ChangeRecord Document::Go(bool back) {
  const UndoStep* step = back ? history_.ToUndo() : history_.ToRedo();
  if (step == nullptr) return {};
  ChangeRecord record = Apply(step->parts.front(), back);
  back ? history_.Undone() : history_.Redone();
  ShowInMenus();
  return record;
}

ChangeRecord Document::UndoPart() {
  const std::vector<RowChange>* part = history_.LastPart();
  if (part == nullptr) return {};
  ChangeRecord record = Apply(*part, true);
  history_.DropLastPart();
  return record;
}

void Document::ShowInMenus() {
  const auto show = [&](const char* control, const char* verb, bool can, const std::string& name) {
    ormel_.menus.Enable(control, can);
    ormel_.menus.SetCaption(control, 0, can ? std::string(verb) + " " + name : std::string(verb));
  };
  show("UNDO", "&Undo", CanUndo(), UndoName());
  show("REDO", "Red&o", CanRedo(), RedoName());
}

}  // namespace ormel
