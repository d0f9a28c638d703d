// The last part of an update: each table in the form that a new project's has.
#include <string>
#include <vector>

#include "store/bulk.h"
#include "store/connection.h"
#include "store/database.h"
#include "store/schema.h"
#include "store/update.h"

namespace ormel {
namespace {

/// The units, folder and stem that the project has stand in its declarations, as in a new project.
NewDatabaseOptions OptionsOf(Database& db) {
  NewDatabaseOptions options;
  RowReader model(db, "select BasemapMeters,ComputeMeters from Model");
  if (model.Next()) {
    options.BasemapMeters = model.Bool(0);
    options.ComputeMeters = model.Bool(1);
  }
  RowReader project(db, "select OrmelBaseName,OrmelBasePath from Project");
  if (project.Next()) {
    options.file_title = std::string(project.Text(0)) + ".orm";
    options.working_directory = project.Text(1);
  }
  return options;
}

void DropIndexes(Database& db, const std::string& table) {
  std::vector<std::string> names;
  {
    PreparedStatement query(db.connection(),
                            "select name from sqlite_master where type='index' and sql is not null and "
                            "tbl_name=? collate nocase");
    for (query.Bind(1, Value(table)); query.Step();) names.emplace_back(query.ColumnText(0));
  }
  for (const std::string& name : names) db.connection()->Exec(("drop index " + QuoteName(name)).c_str());
}

/// The old content of a field as the new table takes it.
std::string Content(const schema::Field& field) {
  const std::string name = QuoteName(field.name);
  if (field.type == schema::FieldType::kBoolean) {
    const std::string truth = "case when " + name + " is null then ";
    if (!field.required) return truth + "null when " + name + "<>0 then -1 else 0 end";
    return truth + (field.has_default ? schema::DefaultSql(field) : "0") + " when " + name +
           "<>0 then -1 else 0 end";
  }
  if (!field.required || field.automatic) return name;
  if (field.has_default) return "coalesce(" + name + "," + schema::DefaultSql(field) + ")";
  if (field.type == schema::FieldType::kText) return "coalesce(" + name + ",'')";
  if (field.type == schema::FieldType::kDate) return "coalesce(" + name + ",now())";
  return "coalesce(" + name + ",0)";
}

/// Fields that no version knows are not thrown away.
void KeepUnknown(Database& db, const schema::Table& table, const TableInfo& old,
                 const std::string& old_name) {
  for (const ColumnInfo& column : old.columns) {
    if (schema::FindField(table, column.name) != nullptr) continue;
    db.connection()->Exec(
        "create table if not exists OtherFields (TableName VARCHAR(64) COLLATE NOCASE, RowNumber INTEGER,"
        " Field VARCHAR(64) COLLATE NOCASE, Content VARCHAR)");
    PreparedStatement keep(db.connection(), "insert into OtherFields select ?,rowid,?,cast(" +
                                                QuoteName(column.name) + " as text) from " +
                                                QuoteName(old_name) + " where " + QuoteName(column.name) +
                                                " is not null");
    keep.Bind(1, Value(std::string(table.name)));
    keep.Bind(2, Value(column.name));
    keep.Run();
  }
}

std::int64_t LastGiven(Database& db, const std::string& table) {
  PreparedStatement query(db.connection(), "select seq from sqlite_sequence where name=? collate nocase");
  query.Bind(1, Value(table));
  return query.Step() ? query.ColumnLong(0) : 0;
}

void Rebuild(Database& db, const schema::Table& table, const NewDatabaseOptions& options) {
  Connection& connection = *db.connection();
  const TableInfo old = connection.Table(table.name);
  const std::string old_name = old.name + "_before";
  DropIndexes(db, old.name);
  connection.Exec(("alter table " + QuoteName(old.name) + " rename to " + QuoteName(old_name)).c_str());
  connection.Exec(schema::CreateTableSql(table, options).c_str());
  std::string names = "rowid";
  std::string contents = "rowid";
  for (const schema::Field& field : table.fields) {
    if (old.Find(field.name) < 0) continue;
    names += "," + QuoteName(field.name);
    contents += "," + Content(field);
  }
  connection.Exec(("insert into " + QuoteName(table.name) + "(" + names + ") select " + contents + " from " +
                   QuoteName(old_name) + " order by rowid")
                      .c_str());
  if (table.fields[0].automatic) {
    const std::int64_t given = LastGiven(db, old_name);
    PreparedStatement keep(db.connection(),
                           "update sqlite_sequence set seq=max(seq,?) where name=? collate nocase");
    keep.Bind(1, given);
    keep.Bind(2, Value(std::string(table.name)));
    if (keep.Run() == 0 && given > 0) {
      PreparedStatement add(db.connection(), "insert into sqlite_sequence(name,seq) values(?,?)");
      add.Bind(1, Value(std::string(table.name)));
      add.Bind(2, given);
      add.Run();
    }
  }
  KeepUnknown(db, table, old, old_name);
  connection.Exec(("drop table " + QuoteName(old_name)).c_str());
  for (const std::string& index : schema::CreateIndexSql(table)) connection.Exec(index.c_str());
}

}  // namespace

void ConformTables(Database& db) {
  const NewDatabaseOptions options = OptionsOf(db);
  for (const schema::Table& table : schema::Tables()) {
    db.connection()->ForgetTables();
    if (!db.HasTable(table.name)) {
      schema::EnsureTable(db, table.name);
    } else {
      Rebuild(db, table, options);
    }
  }
  db.connection()->ForgetTables();
}

}  // namespace ormel
