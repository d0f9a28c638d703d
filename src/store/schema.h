// The tables of a project as data.  Everything that needs to know a table, a field, its type, size or default
// reads this; the file's own declarations are made from it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ormel {

class Database;
struct NewDatabaseOptions;

namespace schema {

inline constexpr int kProjectVersion = 208;
inline constexpr int kDefaultTextSize = 255;                // characters, where a Text field declares no size
inline constexpr std::int32_t kApplicationId = 0x4F524D4C;  // marks the file as a project

enum class FieldType { kBoolean, kByte, kInteger, kLong, kDouble, kDate, kText };

struct Field {
  std::string_view name;
  FieldType type = FieldType::kDouble;
  int size = 0;                    // characters; Text only
  std::string_view default_value;  // numbers and Booleans as in SQL, texts without quotes; see has_default
  bool has_default = false;
  bool required = true;
  bool automatic = false;  // automatic number
};

/// An index over one field.
struct Index {
  std::string_view field;
  bool primary = false;
  bool unique = false;
};

struct Table {
  std::string_view name;
  std::span<const Field> fields;
  Index index;  // field "" = none
  /// Further indexes that only make queries fast: lists of fields, each list behind the first after a ";".
  std::string_view speed_indexes;
};

/// In the order of their making.
std::span<const Table> Tables();
/// Without regard to case; nullptr when there is no such table.
const Table* FindTable(std::string_view name);
const Field* FindField(const Table& table, std::string_view name);

/// Makes the table, with its indexes, in a project of an older version that has none.
void EnsureTable(Database& database, std::string_view table);
/// "Text 32", "Long" ...: for messages and viewers.
std::string TypeName(const Field& field);
/// The field as CREATE TABLE and ALTER TABLE ADD COLUMN take it, with the rules that hold for its contents.
std::string FieldDeclaration(const Table& table, const Field& field);
/// Gives a project of an older version a field that it lacks, with its default; one that has it stays as it
/// is. For fields that may be empty or have a default.  Throws StoreError.
void EnsureField(Database& database, std::string_view table, std::string_view field);
std::string CreateTableSql(const Table& table);
/// With the defaults that follow from the wizard's answers.
std::string CreateTableSql(const Table& table, const NewDatabaseOptions& options);
/// The type as the file declares it, and the default as SQL writes it.
std::string_view Declaration(FieldType type);
std::string DefaultSql(const Field& field);
/// All indexes of the table, as "create index" statements.
std::vector<std::string> CreateIndexSql(const Table& table);

}  // namespace schema

struct NewDatabaseOptions {
  bool BasemapMeters = true;
  bool ComputeMeters = true;
  std::string file_title;  // as chosen in the file dialog; gives OrmelBaseName, cut before the first "."
  std::string working_directory;  // becomes OrmelBasePath
  std::string description = "New Ormel Model";
};

/// Makes a project: all tables, one row in Model and one in Project.  The file gets its name when it is
/// complete, so that a failure leaves nothing half-made.  Refuses a path that exists.  Throws StoreError.
void DBNewDatabase(const std::string& path, const NewDatabaseOptions& options);

}  // namespace ormel
