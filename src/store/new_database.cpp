#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "store/bulk.h"
#include "store/connection.h"
#include "store/schema.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {

namespace {

/// A name for the file while it is being made; removed unless Keep() gives it its own.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& path) : path_(path), temporary_(TemporaryBeside(path, ".new")) {}
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile() {
    if (!kept_) Remove();
  }

  const std::string& name() const { return temporary_; }

  void Keep() {
    // A link instead of a renaming: it fails where a file of that name has come up in the meantime.
    if (::link(temporary_.c_str(), path_.c_str()) != 0) {
      if (errno == EEXIST)
        throw StoreError(StoreErrorCode::kFileExists, "The file \"" + path_ + "\" exists already.");
      if (::rename(temporary_.c_str(), path_.c_str()) != 0) {  // a file system without links
        throw StoreError(StoreErrorCode::kBadPath, "The file \"" + path_ + "\" cannot be put in place: " +
                                                       std::generic_category().message(errno) + ".");
      }
    }
    kept_ = true;
    ::unlink(temporary_.c_str());
    const std::string folder = GetPathFromFile(path_);
    const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
      ::fsync(handle);
      ::close(handle);
    }
  }

 private:
  void Remove() const {
    ::unlink(temporary_.c_str());
    ::unlink((temporary_ + "-journal").c_str());
  }

  std::string path_;
  std::string temporary_;
  bool kept_ = false;
};

/// The declarations that depend on the answers of the wizard, put in place of those of the list.
schema::Field Adapted(const schema::Field& field, const NewDatabaseOptions& options,
                      const std::string& base_name) {
  schema::Field out = field;
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

void MakeTables(Database& database, const NewDatabaseOptions& options, const std::string& base_name) {
  for (const schema::Table& table : schema::Tables()) {
    std::vector<schema::Field> fields;
    for (const schema::Field& field : table.fields) fields.push_back(Adapted(field, options, base_name));
    schema::Table adapted = table;
    adapted.fields = fields;
    database.connection()->Exec(schema::CreateTableSql(adapted).c_str());
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
      MakeTables(database, options, base_name);
      AddRows(database, options, base_name);
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
