// Projects of older versions brought to the present one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ormel {

class Database;

/// A box that the user gets after the update.
struct UpdateNote {
  std::string title, text;
};

struct UpdateReport {
  std::string copy;  ///< the project as it was, beside it
  std::vector<UpdateNote> notes;
};

/// Project.ProjectVersion; 100 for a project from before versions were stored.
std::int64_t VersionOf(const Database& database);

/// Brings a closed project of version 100 or 200 to 207 to the present version, in place.  Its tables are
/// then those of a new project in every field, type, size, default and index; fields that no version knows
/// are kept in the table OtherFields.  A copy "<name>.v<version>.orm" is kept before the first step; all
/// steps are one transaction.  Throws StoreError when it fails: the project is then as it was, and the
/// message says which step, table and field, and where the copy is.
/// `directory`: becomes the folder of the model files of a project that names none.
UpdateReport UpdateProject(const std::string& path, const std::string& directory);

/// Gives every table the form that a new project's has; one that is missing is made, empty.  Contents stay,
/// nulls too where a field may be empty; where it may not, the field's default is put.  Numbers that were
/// once given to a row are not given again.  Inside a transaction.  Throws StoreError for a value that does
/// not fit.
void ConformTables(Database& database);

}  // namespace ormel
