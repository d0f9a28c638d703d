// The tables as statements that make them, with the rules for their contents: every way of writing, also that
// of another program, meets the same rules, and the name of a broken rule is the message.
#include <array>

#include "store/connection.h"
#include "store/database.h"
#include "store/field_rules.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/strings.h"

namespace ormel::schema {

namespace {

struct TypeEntry {
  FieldType type;
  std::string_view name;         // for people
  std::string_view declaration;  // in the file
  std::string_view condition;    // on "?", what may stand in the field
  std::string_view rule;         // the same in words
};

constexpr std::array kTypes{
    TypeEntry{FieldType::kBoolean, "Boolean", "BOOLEAN", "? in (0,-1)",
              "only True (-1) and False (0) are possible"},
    TypeEntry{FieldType::kByte, "Byte", "BYTE", "typeof(?)='integer' and ? between 0 and 255",
              "only whole numbers from 0 to 255 are possible"},
    TypeEntry{FieldType::kInteger, "Integer", "SMALLINT",
              "typeof(?)='integer' and ? between -32768 and 32767",
              "only whole numbers from -32768 to 32767 are possible"},
    TypeEntry{FieldType::kLong, "Long", "INTEGER",
              "typeof(?)='integer' and ? between -2147483648 and 2147483647",
              "only whole numbers from -2147483648 to 2147483647 are possible"},
    TypeEntry{FieldType::kDouble, "Double", "DOUBLE", "typeof(?)='real' and abs(?)<9e999",
              "only finite numbers are possible"},
    TypeEntry{FieldType::kDate, "Date", "DATETIME", "typeof(?)='text' and length(?)=19",
              "only dates of the form 2026-11-24 13:05:00 are possible"},
    TypeEntry{FieldType::kText, "Text", "VARCHAR", "", ""},
};

const TypeEntry& EntryOf(FieldType type) {
  return kTypes[static_cast<std::size_t>(type)];
}

std::string Replace(std::string_view pattern, std::string_view name) {
  std::string out;
  for (const char c : pattern) {
    if (c == '?') {
      out += name;
    } else {
      out += c;
    }
  }
  return out;
}

std::string Check(const Table& table, const Field& field) {
  const std::string name = QuoteName(field.name);
  std::string condition;
  std::string rule;
  if (field.type == FieldType::kText) {
    const std::string size = std::to_string(field.size);
    condition = "length(" + name + ")<=" + size;
    rule = "the text is too long, at most " + size + " characters fit; shorten it";
  } else {
    condition = Replace(EntryOf(field.type).condition, name);
    rule = EntryOf(field.type).rule;
    if (!field.required) condition = name + " is null or (" + condition + ")";
  }
  const std::string full_name = std::string(table.name) + "." + std::string(field.name) + ": " + rule;
  return " CONSTRAINT " + QuoteName(full_name) + " CHECK(" + condition + ")";
}

std::vector<std::string> SplitFields(std::string_view list) {
  return ParseString(list, ',');
}

/// Names of indexes are unique in a whole file, so the table's name stands in front.
std::string IndexSql(const Table& table, std::string_view fields, bool unique, std::string_view prefix) {
  std::string name(prefix);
  name += table.name;
  std::string columns;
  for (const std::string& field : SplitFields(fields)) {
    name += "_" + field;
    columns += (columns.empty() ? "" : ",") + QuoteName(field);
    // The declared index on a text sorts by bytes, as every other program does.
    if (FindField(table, field)->type == FieldType::kText && prefix.empty()) columns += " COLLATE BINARY";
  }
  return std::string("CREATE ") + (unique ? "UNIQUE " : "") + "INDEX " + QuoteName(name) + " ON " +
         QuoteName(table.name) + "(" + columns + ")";
}

/// The declarations that depend on the answers of the wizard, put in place of those of the list.
Field Adapted(const Field& field, const NewDatabaseOptions& options, const std::string& base_name) {
  Field out = field;
  const auto give = [&](std::string_view value) {
    out.default_value = value;
    out.has_default = true;
  };
  if (field.name == "BasemapMeters") give(options.BasemapMeters ? "True" : "False");
  if (field.name == "ComputeMeters") give(options.ComputeMeters ? "True" : "False");
  if (field.name == "OrmelBasePath") give(options.working_directory);
  // A title without "." declares no default; the row of Project has the title all the same.
  if (field.name == "OrmelBaseName" && base_name != options.file_title) give(base_name);
  return out;
}

std::string TooLong(const Field& field) {
  return "the text is too long, at most " + std::to_string(field.size) + " characters fit; shorten it";
}

}  // namespace

std::string Condition(const Field& field) {
  const std::string name = "[" + std::string(field.name) + "]";
  const std::string condition = field.type == FieldType::kText
                                    ? "length(" + name + ")<=" + std::to_string(field.size)
                                    : Replace(EntryOf(field.type).condition, name);
  return field.required ? name + " is not null and " + condition : name + " is null or (" + condition + ")";
}

std::string Rule(const Field& field) {
  if (field.type == FieldType::kText) return TooLong(field);
  return std::string(EntryOf(field.type).rule) + (field.required ? "" : ", or nothing");
}

std::string_view Declaration(FieldType type) {
  return EntryOf(type).declaration;
}

std::string DefaultSql(const Field& field) {
  if (field.type == FieldType::kText) return "'" + SQLSafe(field.default_value) + "'";
  if (EqualNoCase(field.default_value, "true")) return "-1";
  if (EqualNoCase(field.default_value, "false")) return "0";
  return std::string(field.default_value);
}

std::string CreateTableSql(const Table& table, const NewDatabaseOptions& options) {
  const std::string base_name = BaseName(options.file_title);
  std::vector<Field> fields;
  for (const Field& field : table.fields) fields.push_back(Adapted(field, options, base_name));
  Table adapted = table;
  adapted.fields = fields;
  return CreateTableSql(adapted);
}

std::string TypeName(const Field& field) {
  std::string name(EntryOf(field.type).name);
  if (field.type == FieldType::kText) name += " " + std::to_string(field.size);
  return name;
}

std::string FieldDeclaration(const Table& table, const Field& field) {
  std::string out = QuoteName(field.name) + " " + std::string(EntryOf(field.type).declaration);
  if (field.automatic) return out + " PRIMARY KEY AUTOINCREMENT NOT NULL";
  if (field.type == FieldType::kText) out += "(" + std::to_string(field.size) + ") COLLATE NOCASE";
  if (field.required) out += " NOT NULL";
  if (field.has_default) out += " DEFAULT " + DefaultSql(field);
  return out + Check(table, field);
}

void EnsureTable(Database& database, std::string_view table) {
  if (database.HasTable(table)) return;
  const Table& wanted = *FindTable(table);
  database.connection()->Exec(CreateTableSql(wanted).c_str());
  for (const std::string& index : CreateIndexSql(wanted)) database.connection()->Exec(index.c_str());
  database.connection()->ForgetTables();
}

void EnsureField(Database& database, std::string_view table, std::string_view field) {
  if (database.HasField(table, field)) return;
  const Table& of = *FindTable(table);
  const std::string sql =
      "ALTER TABLE " + QuoteName(of.name) + " ADD COLUMN " + FieldDeclaration(of, *FindField(of, field));
  database.connection()->Exec(sql.c_str());
  database.connection()->ForgetTables();
}

std::string CreateTableSql(const Table& table) {
  std::string out = "CREATE TABLE " + QuoteName(table.name) + " (";
  for (const Field& field : table.fields) {
    out += (&field == table.fields.data() ? "\n  " : ",\n  ") + FieldDeclaration(table, field);
  }
  return out + ")";
}

std::vector<std::string> CreateIndexSql(const Table& table) {
  std::vector<std::string> out;
  // An automatic number is the row's own number and needs no index beside it.
  if (!table.index.field.empty() && !FindField(table, table.index.field)->automatic) {
    out.push_back(IndexSql(table, table.index.field, table.index.unique, ""));
  }
  for (const std::string& fields : ParseString(table.speed_indexes, ';')) {
    out.push_back(IndexSql(table, fields, false, "speed_"));
  }
  return out;
}

}  // namespace ormel::schema
