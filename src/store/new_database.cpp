#include <filesystem>
#include <system_error>
#include <vector>

#include "store/bulk.h"
#include "store/checksums.h"
#include "store/connection.h"
#include "store/schema.h"
#include "store/unfinished_file.h"
#include "text/files.h"

namespace ormel {

namespace {

void MakeTables(Database& database, const NewDatabaseOptions& options) {
  for (const schema::Table& table : schema::Tables()) {
    database.connection()->Exec(schema::CreateTableSql(table, options).c_str());
    for (const std::string& index : schema::CreateIndexSql(table)) database.connection()->Exec(index.c_str());
  }
  database.connection()->ForgetTables();
}

void AddRows(Database& database, const NewDatabaseOptions& options, const std::string& base_name) {
  database.connection()->Exec("INSERT INTO Model DEFAULT VALUES");
  BulkInsert project(database, "Project", {"Description", "Updated", "OrmelBaseName", "OrmelBasePath"});
  project.Row(options.description, DateTime::Now(), base_name, options.working_directory);
}

void Fill(const std::string& path, const NewDatabaseOptions& options, const std::string& base_name) {
  Database database = Database::Create(path);
  {
    Transaction transaction(database);
    try {
      MakeTables(database, options);
      AddRows(database, options, base_name);
      AcceptContents(database);
    } catch (...) {
      transaction.Rollback();
      throw;
    }
    transaction.Commit();
  }
  database.Close();
}

}  // namespace

void DBNewDatabase(const std::string& given_path, const NewDatabaseOptions& given) {
  std::error_code error;
  const std::string path = std::filesystem::absolute(given_path, error).string();
  NewDatabaseOptions options = given;
  if (options.file_title.empty()) options.file_title = FileTitle(path);
  if (options.working_directory.empty())
    options.working_directory = std::filesystem::current_path(error).string();
  const std::string base_name = BaseName(options.file_title);
  if (std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
    throw StoreError(StoreErrorCode::kFileExists,
                     "The file \"" + path + "\" exists already. Delete it first, or choose another name.");
  }
  // A project that could be made only in part would look like one: the file has another name until it is
  // whole.
  UnfinishedFile file(path);
  try {
    Fill(file.name(), options, base_name);
  } catch (const StoreError& failure) {  // the user knows the file by the name that was asked for
    std::string message = failure.what();
    const std::size_t at = message.find(file.name());
    if (at != std::string::npos) message.replace(at, file.name().size(), path);
    throw StoreError(failure.code(), message, failure.table(), failure.field());
  }
  file.Keep();
}

}  // namespace ormel
