#include "store/update.h"

#include <algorithm>

#include "store/bulk.h"
#include "store/connection.h"
#include "store/database.h"
#include "store/kept_copy.h"
#include "store/schema.h"
#include "store/update_steps.h"
#include "store/view.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

using update::Act;
using update::Action;
using update::Step;

constexpr std::int64_t kFirstVersion = 100;

void AddField(Database& db, const Action& action, const std::string& name) {
  if (db.HasField(action.table, name))
    throw StoreError(
        StoreErrorCode::kOther,
        "the field is there already: an update by another program was cut off in this project. Go on with a "
        "copy of it from before",
        std::string(action.table), name);
  const schema::Field& field = *schema::FindField(*schema::FindTable(action.table), name);
  // The rules for its contents come with the table's final form.
  std::string sql = "alter table " + QuoteName(action.table) + " add column " + QuoteName(field.name) + " " +
                    std::string(schema::Declaration(field.type));
  if (field.has_default) sql += " default " + schema::DefaultSql(field);
  db.connection()->Exec(sql.c_str());
}

void DropField(Database& db, const Action& action, const std::string& name) {
  if (!db.HasField(action.table, name))
    throw StoreError(StoreErrorCode::kNoSuchField,
                     "the field is not there. The project is not of the version that it says",
                     std::string(action.table), name);
  db.connection()->Exec(
      ("alter table " + QuoteName(action.table) + " drop column " + QuoteName(name)).c_str());
}

void MakeTable(Database& db, const Action& action) {
  if (db.HasTable(action.table))
    throw StoreError(StoreErrorCode::kOther,
                     "the table is there already: an update by another program was cut off in this project. "
                     "Go on with a copy of it from before",
                     std::string(action.table));
  schema::EnsureTable(db, action.table);
}

void RunSql(Database& db, const Action& action, const std::string& directory) {
  PreparedStatement statement(db.connection(), action.sql);
  if (action.sql.find('?') != std::string_view::npos) statement.Bind(1, Value(directory));
  statement.Run();
}

void Do(Database& db, const Action& action, const std::string& directory) {
  switch (action.act) {
    case Act::kAddFields:
      for (const std::string& name : ParseString(action.fields, ',')) AddField(db, action, name);
      break;
    case Act::kDropFields:
      for (const std::string& name : ParseString(action.fields, ',')) DropField(db, action, name);
      break;
    case Act::kMakeTable:
      MakeTable(db, action);
      break;
    case Act::kDropTable:
      db.connection()->Exec(("drop table " + QuoteName(action.table)).c_str());
      break;
    case Act::kRun:
      RunSql(db, action, directory);
      break;
  }
  db.connection()->ForgetTables();
}

/// "table Wells, field Head: " as far as it is known.
std::string Place(const StoreError& error, const Action* action) {
  std::string table = error.table();
  std::string field = error.field();
  if (table.empty() && action != nullptr) table = action->table;
  if (field.empty() && action != nullptr) field = action->fields;
  std::string place;
  if (!table.empty()) place += "table " + table;
  if (!field.empty()) place += (place.empty() ? "field " : ", field ") + field;
  return place;
}

void RunStep(Database& db, const Step& step, const std::string& directory) {
  const Action* at = nullptr;
  try {
    for (const Action& action : step.actions) {
      at = &action;
      Do(db, action, directory);
    }
    at = nullptr;
    db.Execute("update Project set ProjectVersion=?", {step.to});
    if (step.to == schema::kProjectVersion) ConformTables(db);
  } catch (const StoreError& e) {
    std::string place = Place(e, at);
    if (!place.empty()) place = ", " + place;
    throw StoreError(e.code(),
                     "Step " + std::to_string(step.from) + " to " + std::to_string(step.to) + place + ": " +
                         e.what() + "\n",
                     e.table(), e.field());
  }
}

/// What a project of the first version has to be told; read before the steps.
std::vector<UpdateNote> NotesOf(Database& db, std::int64_t version) {
  std::vector<UpdateNote> notes;
  if (version != kFirstVersion) return notes;
  notes.push_back({"Please Note",
                   "This update has made any previous solutions invalid. \n"
                   "You will need to re-solve the model"});
  const double recharge = db.Scalar("select AQRecharge from Model").AsDouble();
  if (recharge == 0.0) return notes;
  const bool meters = db.Scalar("select ComputeMeters from Model").AsBool();
  notes.push_back({"Please Note",
                   "The project database you are opening contains a global aquifer recharge value of " +
                       NumberText(recharge) + (meters ? " m/day." : " ft/day.") +
                       "\nYou must create a recharge inhomogeneity over the entire model area with that "
                       "recharge rate.\n\n"
                       "Note: The earlier Ormel version 1.XX used a circular area with this recharge rate, "
                       "while you\n          will create a polygon (e.g. rectangle)\n"
                       " in Ormel version 2.XX. Consequently, the \n"
                       "          solutions generated by the two Ormel versions may differ somewhat in the "
                       "far field."});
  return notes;
}

/// What was found that no version knows.
void TellUnknown(Database& db, std::vector<UpdateNote>& notes) {
  if (!db.HasTable("OtherFields")) return;
  std::string names;
  RowReader rows(db, "select distinct TableName,Field from OtherFields order by TableName,Field");
  while (rows.Next())
    names += (names.empty() ? "" : ", ") + std::string(rows.Text(0)) + "." + std::string(rows.Text(1));
  if (!names.empty())
    notes.push_back(
        {"Please Note",
         "These fields are not known. Their contents are kept in the table OtherFields: " + names + "."});
}

}  // namespace

std::int64_t VersionOf(const Database& database) {
  if (!database.HasField("Project", "ProjectVersion")) return kFirstVersion;
  Database& db = const_cast<Database&>(database);
  return db.Scalar("select ProjectVersion from Project;").AsLong();
}

UpdateReport UpdateProject(const std::string& path, const std::string& directory) {
  UpdateReport report;
  Database db = Database::Open(path);
  const std::int64_t version = VersionOf(db);
  const std::span<const Step> steps = update::Steps();
  const auto first =
      std::find_if(steps.begin(), steps.end(), [version](const Step& s) { return s.from == version; });
  if (first == steps.end())
    throw StoreError(StoreErrorCode::kNotAProject, "The project says that it has version " +
                                                       std::to_string(version) +
                                                       ", which no Ormel ever wrote. It was not changed.");
  report.copy = KeepCopy(path, ImageOf(db), "v" + std::to_string(version));
  try {
    report.notes = NotesOf(db, version);
    Transaction all(db);
    try {
      for (auto step = first; step != steps.end(); ++step) RunStep(db, *step, directory);
    } catch (...) {
      all.Rollback();
      throw;
    }
    TellUnknown(db, report.notes);
    all.Commit();
  } catch (const StoreError& e) {
    throw StoreError(e.code(),
                     std::string(e.what()) + "\nThe project is as it was, and a copy of it is kept as \"" +
                         report.copy + "\".",
                     e.table(), e.field());
  }
  db.Close();
  return report;
}

}  // namespace ormel
