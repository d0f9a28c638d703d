// A change record in terms of the model: which elements, what happened to them, and a name for it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/changes.h"
#include "core/types.h"
#include "document/fields.h"

namespace ormel {

struct Ormel;

/// Records of these names are told within a command that takes a step of the history; its own is still to
/// come.
inline constexpr const char* kUndoRecord = "Undo";
inline constexpr const char* kRedoRecord = "Redo";
inline bool IsStep(const ChangeRecord& record) {
  return record.command == kUndoRecord || record.command == kRedoRecord;
}

/// What happened to one row.
struct Touched {
  std::string table;
  std::int64_t row = 0;  ///< the `VID` of a vertex, the `PID` of a polygon, else the row's own number
  bool added = false, removed = false;
  std::vector<std::string> fields;  ///< the ones that differ; all of them for a row that came or went
  /// True when a field of this role is among them.
  bool Has(Role role) const;
};

std::vector<Touched> TouchedBy(std::span<const RowChange> rows);

/// Something of `what` is not true any more: a field of that role has another content, or an element whose
/// place counts has come, gone or moved.  Image wells follow their sources and do not count; nor do the
/// numbers that order the vertices of a string.
bool AnySpoils(Ormel& ormel, std::span<const RowChange> rows, Spoils what);

/// Without the rows, and within a row that stayed without regard to the fields, that an undo leaves alone.
std::vector<RowChange> UndoneRows(std::vector<RowChange> rows);
/// Several commands as one: each row from before the first to behind the last.
std::vector<RowChange> Joined(std::span<const std::vector<RowChange>> parts);

/// What a user calls it: "Add Well", "Move Linesink Vertex", "Delete 12 Test Points".
std::string ActionName(Ormel& ormel, std::span<const RowChange> rows);

/// Puts the rows back to what they were, or (`back` false) forth again.  Throws StoreError when the project
/// does not hold what the record says; nothing is changed then.
void ApplyRows(Ormel& ormel, std::span<const RowChange> rows, bool back);

}  // namespace ormel
