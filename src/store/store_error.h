// What goes wrong in the store.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace ormel {

/// Numbers by which failure boxes tell the cases apart.
enum class StoreErrorCode : int {
  kNoCurrentRow = 3021,
  kUpdateWithoutEdit = 3020,
  kDuplicateKey = 3022,
  kNotFound = 3024,  // no such file
  kDiskFull = 3026,
  kNotUpdatable = 3027,
  kDisk = 3043,  // reading or writing failed, or was not confirmed
  kBadPath = 3044,
  kInUse = 3045,  // open in another program
  kDamaged = 3049,
  kReadOnly = 3051,
  kMissingParameter = 3061,
  kSyntax = 3075,
  kNoSuchTable = 3078,
  kTooLong = 3163,  // a text longer than its field
  kRowDeleted = 3167,
  kFileExists = 3204,
  kNoSuchField = 3265,
  kRequired = 3314,  // a field that may not be empty
  kNotAProject = 3343,
  kWrongType = 3421,
  kClosed = 3420,  // the project has been closed
  kOther = 3000,
};

/// Its message is made for the user: what happened, to which file, table and field, and what to do.
class StoreError : public std::runtime_error {
 public:
  StoreError(StoreErrorCode code, const std::string& message, std::string table = {}, std::string field = {})
      : std::runtime_error(message), code_(code), table_(std::move(table)), field_(std::move(field)) {}
  StoreErrorCode code() const { return code_; }
  int number() const { return static_cast<int>(code_); }
  const std::string& table() const { return table_; }
  const std::string& field() const { return field_; }

 private:
  StoreErrorCode code_;
  std::string table_, field_;
};

}  // namespace ormel
