#include "store/salvage.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>

#include "store/connection.h"
#include "store/database.h"
#include "store/kept_copy.h"
#include "store/page_reader.h"
#include "store/schema.h"
#include "store/store_error.h"
#include "text/files.h"
#include "text/names.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// A row of the file's list of tables.
struct Listed {
  std::uint32_t root = 0;
  std::string sql;
};

std::map<std::string, Listed> ReadList(PageReader& pages) {
  std::map<std::string, Listed> list;
  pages.Walk(1, [&list](std::int64_t, const std::vector<Value>& row) {
    if (row.size() != 5 || row[0].AsText() != "table") return;
    const std::int64_t root = row[3].AsLong();
    if (root > 0) list[FoldCase(row[1].AsText())] = {static_cast<std::uint32_t>(root), row[4].AsText()};
  });
  return list;
}

/// Writes the rows of one table into the new project.
class Rescuer {
 public:
  Rescuer(Database& db, const schema::Table& table) : db_(db), info_(db.connection()->Table(table.name)) {
    report.name = table.name;
    std::string names = "rowid";
    std::string places = "?";
    for (const ColumnInfo& column : info_.columns) {
      names += "," + QuoteName(column.name);
      places += ",?";
    }
    sql_ = "insert into " + QuoteName(info_.name) + "(" + names + ") values(" + places + ")";
  }

  /// A row of another table has other types at its places.
  bool Fits(const std::vector<Value>& row) const {
    if (row.size() != info_.columns.size()) return false;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const schema::FieldType type = info_.columns[i].type;
      const bool text = type == schema::FieldType::kText || type == schema::FieldType::kDate;
      if (!row[i].IsNull() && row[i].IsText() != text) return false;
      const bool own_number = static_cast<int>(i) == info_.automatic;
      if (row[i].IsNull() != own_number && (own_number || info_.columns[i].required)) return false;
    }
    return true;
  }

  void Add(std::int64_t rowid, const std::vector<Value>& row) {
    try {
      PreparedStatement insert(db_.connection(), sql_);
      insert.Bind(1, rowid);
      for (std::size_t i = 0; i < info_.columns.size(); ++i) {
        Value value = i < row.size() ? row[i] : info_.columns[i].default_value;
        if (static_cast<int>(i) == info_.automatic) value = rowid;
        insert.Bind(static_cast<int>(i) + 2, value);
      }
      insert.Run();
      ++report.rows;
    } catch (const StoreError&) {  // a content that no field can have: the row is spoilt
      ++report.spoilt;
    }
  }

  SalvagedTable report;

 private:
  Database& db_;
  const TableInfo info_;
  std::string sql_;
};

/// The table as the damaged file declares it, or, where that cannot be read, as a new project's.
void MakeTable(Database& db, const schema::Table& table, const Listed* listed) {
  const bool told = listed != nullptr && StartsWithNoCase(listed->sql, "create table");
  if (told) {
    try {
      db.connection()->Exec(listed->sql.c_str());
      db.connection()->ForgetTables();
      if (db.HasTable(table.name) && db.HasField(table.name, table.fields[0].name)) {
        for (const std::string& index : schema::CreateIndexSql(table)) db.connection()->Exec(index.c_str());
        return;
      }
    } catch (const StoreError&) {  // NOLINT(bugprone-empty-catch): the schema's own is taken below
    }
    if (db.HasTable(table.name)) db.connection()->Exec(("drop table " + QuoteName(table.name)).c_str());
  }
  schema::EnsureTable(db, table.name);
}

/// Pages that no tree leads to any more: their rows go to the one table that they can be of.
void TakeStray(PageReader& pages, std::vector<std::unique_ptr<Rescuer>>& tables) {
  Rescuer* owner = nullptr;
  bool decided = false;
  pages.WalkStray([&](std::uint32_t) { decided = false; },
                  [&](std::int64_t rowid, const std::vector<Value>& row) {
                    if (!decided) {
                      owner = nullptr;
                      decided = true;
                      for (const auto& table : tables) {
                        if (!table->report.pages_lost || !table->Fits(row)) continue;
                        if (owner != nullptr) {
                          owner = nullptr;
                          break;
                        }
                        owner = table.get();
                      }
                    }
                    if (owner != nullptr) owner->Add(rowid, row);
                  });
}

/// Model and Project have one row, whatever was lost.
void EnsureSingleRows(Database& db, const std::string& path) {
  if (db.RowCount("Model") == 0) db.connection()->Exec("INSERT INTO Model DEFAULT VALUES");
  if (db.RowCount("Project") == 0)
    db.Execute("insert into Project (Updated,OrmelBaseName,OrmelBasePath) values (?,?,'.')",
               {DateTime::Now(), BaseName(path)});
}

std::vector<SalvagedTable> Fill(Database& db, PageReader& pages, const std::string& path) {
  const std::map<std::string, Listed> list = ReadList(pages);
  std::vector<std::unique_ptr<Rescuer>> tables;
  Transaction all(db);
  for (const schema::Table& table : schema::Tables()) {
    const auto listed = list.find(FoldCase(table.name));
    const Listed* found = listed == list.end() ? nullptr : &listed->second;
    MakeTable(db, table, found);
    tables.push_back(std::make_unique<Rescuer>(db, table));
    Rescuer& rescuer = *tables.back();
    if (found == nullptr) {
      rescuer.report.pages_lost = true;  // or the project is older than the table
      continue;
    }
    const PageReader::Outcome outcome = pages.Walk(
        found->root,
        [&rescuer](std::int64_t rowid, const std::vector<Value>& row) { rescuer.Add(rowid, row); });
    rescuer.report.spoilt += outcome.spoilt;
    rescuer.report.pages_lost = outcome.pages_lost;
  }
  TakeStray(pages, tables);
  std::vector<SalvagedTable> reports;
  std::int64_t rows = 0;
  for (const auto& table : tables) {
    reports.push_back(table->report);
    rows += table->report.rows;
  }
  if (rows == 0) {
    all.Rollback();
    throw StoreError(StoreErrorCode::kNotAProject,
                     "The file \"" + path + "\" holds nothing of a project that could be read.");
  }
  EnsureSingleRows(db, path);
  all.Commit();
  return reports;
}

/// A file that a newer program wrote is not damaged.
void RefuseNewer(const std::string& bytes, const std::string& path) {
  constexpr std::string_view kMark = "ORML";
  if (bytes.size() < 100 || !bytes.starts_with("SQLite format 3") || bytes.compare(68, 4, kMark) != 0) return;
  if (bytes.compare(60, 3, std::string(3, '\0')) == 0 && bytes[63] <= 1) return;
  throw StoreError(
      StoreErrorCode::kNotAProject,
      "The file \"" + path + "\" was written by a newer version of Ormel. Update Ormel to open it.");
}

}  // namespace

std::string SalvageReport::Losses() const {
  std::string text;
  for (const SalvagedTable& table : tables) {
    if (table.spoilt == 0 && !table.pages_lost) continue;
    text += table.name + ": " + std::to_string(table.rows) + " rows kept";
    if (table.spoilt > 0) text += ", " + std::to_string(table.spoilt) + " could not be read";
    if (table.pages_lost) text += ", others may be missing";
    text += "\n";
  }
  return text;
}

SalvageReport SalvageProject(const std::string& path) {
  SalvageReport report;
  const std::string bytes = FileBytes(path);
  RefuseNewer(bytes, path);
  PageReader pages(bytes);
  const std::string fresh = TemporaryBeside(path, ".new");
  try {
    Database db = Database::Create(fresh);
    report.tables = Fill(db, pages, path);
    db.Close();
    report.copy = KeepCopy(path, bytes, "damaged");
    if (std::rename(fresh.c_str(), path.c_str()) != 0)
      throw StoreError(StoreErrorCode::kBadPath, "The file \"" + path + "\" cannot be replaced.");
  } catch (...) {
    std::remove(fresh.c_str());
    std::remove((fresh + "-journal").c_str());
    throw;
  }
  // Of a command that a crash cut off: it belongs to the damaged file.
  std::rename((path + "-journal").c_str(), (report.copy + "-journal").c_str());
  return report;
}

}  // namespace ormel
