// What each field of a project is to the program: whether an undo puts it back, and what of a solution is
// spoiled when it changes.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ormel {

enum class Role : char {
  kModel,   ///< what the user drew or entered
  kRun,     ///< how it is solved, contoured and traced
  kView,    ///< how it is looked at; never undone
  kResult,  ///< written by a run; never undone
};

/// What is not true any more when the field has another content.
enum class Spoils : char {
  kNothing,
  kSolution,
  kContours,
  kPaths,
  kRerun,    ///< nothing on view, but another solve would give more or other numbers
  kByOwner,  ///< a vertex: what its element's place spoils (document/kinds.h)
};

struct FieldRole {
  Role role = Role::kModel;
  Spoils spoils = Spoils::kNothing;
  bool Undone() const { return role == Role::kModel || role == Role::kRun; }
};

/// Without regard to case.  A table that the program does not know is a view: it is left alone.
FieldRole RoleOf(std::string_view table, std::string_view field);
/// The tables that an undo may touch.
const std::vector<std::string>& UndoneTables();
/// The fields of a table that spoil `what`, in the table's order.
std::vector<std::string> FieldsThatSpoil(std::string_view table, Spoils what);

}  // namespace ormel
