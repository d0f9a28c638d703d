// Opening a project file: what it is, whether it is whole, whether we may have it.  Nothing is written on the
// way, so that a refused file stays as it was, byte for byte; but a command that a crash cut off is undone.
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <system_error>
#include <thread>

#include "store/connection.h"
#include "store/errors.h"
#include "text/files.h"

namespace ormel {

namespace {

constexpr int kLockWaitMs = 500;    // another program may just be reading
constexpr int kStorageVersion = 1;  // of the file's layout; Project.ProjectVersion tells that of the tables
constexpr std::size_t kHeaderBytes = 100;
constexpr std::string_view kMagic("SQLite format 3\0", 16);

struct CloseHandle {
  void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
};
using Handle = std::unique_ptr<sqlite3, CloseHandle>;

[[noreturn]] void Refuse(StoreErrorCode code, const std::string& path, const std::string& text) {
  throw StoreError(code, "The file \"" + path + "\" " + text);
}

std::string AbsolutePath(const std::string& path) {
  if (path.empty()) throw StoreError(StoreErrorCode::kBadPath, "No project file was named.");
  if (path.find('\0') != std::string::npos)
    throw StoreError(StoreErrorCode::kBadPath, "The path holds a zero byte.");
  std::error_code error;
  auto absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

/// The header, read through SQLite's own file: opening and closing the file beside it would drop the locks
/// that this program may hold on it.
class Header {
 public:
  explicit Header(sqlite3* handle) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    sqlite3_int64 size = 0;
    if (file == nullptr || file->pMethods == nullptr || file->pMethods->xFileSize(file, &size) != SQLITE_OK)
      return;
    size_ = size;
    if (size_ >= static_cast<sqlite3_int64>(kHeaderBytes)) {
      readable_ = file->pMethods->xRead(file, bytes_.data(), kHeaderBytes, 0) == SQLITE_OK;
    }
  }

  std::int64_t size() const { return size_; }
  bool IsDatabase() const { return readable_ && std::string_view(bytes_.data(), kMagic.size()) == kMagic; }
  std::uint32_t application() const { return Number(68); }
  std::uint32_t version() const { return Number(60); }
  /// Bytes that the file should have at least; 0 when the header does not tell.
  std::int64_t NeededSize() const {
    std::int64_t page =
        (static_cast<unsigned char>(bytes_[16]) << 8U) | static_cast<unsigned char>(bytes_[17]);
    if (page == 1) page = 65536;
    return Number(24) == Number(92) ? page * Number(28) : 0;
  }

 private:
  std::uint32_t Number(std::size_t at) const {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number = (number << 8U) | static_cast<unsigned char>(bytes_[at + i]);
    return number;
  }

  std::array<char, kHeaderBytes> bytes_{};
  std::int64_t size_ = 0;
  bool readable_ = false;
};

void CheckHeader(const Header& header, const std::string& path) {
  if (header.size() == 0) Refuse(StoreErrorCode::kNotAProject, path, "is empty and no project.");
  if (!header.IsDatabase())
    Refuse(StoreErrorCode::kNotAProject, path, "is not a project. Choose a file made by Ormel.");
  if (header.application() != static_cast<std::uint32_t>(schema::kApplicationId)) {
    Refuse(StoreErrorCode::kNotAProject, path,
           "is a database but no project of Ormel. Choose a file made by Ormel.");
  }
  if (header.version() > kStorageVersion) {
    Refuse(StoreErrorCode::kNotAProject, path,
           "was written by a newer version of Ormel. Update Ormel to open it.");
  }
}

void CheckSize(const Header& header, const std::string& path) {
  if (header.size() >= header.NeededSize()) return;
  Refuse(StoreErrorCode::kDamaged, path,
         "is cut short: it has " + std::to_string(header.size()) + " of " +
             std::to_string(header.NeededSize()) +
             " bytes. Copy it again from where it came, or go on with an older copy.");
}

/// A command that a crash cut off has left its journal; what the file says of itself holds only after undoing
/// it.
bool HasJournal(sqlite3* handle) {
  struct stat info {};
  // The journal lies beside the file itself, also where the path is a link to it.
  const char* journal = sqlite3_filename_journal(sqlite3_db_filename(handle, "main"));
  return journal != nullptr && ::stat(journal, &info) == 0 && info.st_size > 0;
}

void CheckPath(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) Refuse(StoreErrorCode::kNotFound, path, "does not exist.");
    Refuse(StoreErrorCode::kBadPath, path,
           "cannot be reached: " + std::generic_category().message(errno) + ".");
  }
  if (S_ISDIR(info.st_mode)) Refuse(StoreErrorCode::kNotAProject, path, "is a folder.");
  if (!S_ISREG(info.st_mode)) Refuse(StoreErrorCode::kNotAProject, path, "is not a plain file.");
  if (::access(path.c_str(), R_OK) != 0) {
    Refuse(StoreErrorCode::kBadPath, path,
           "may not be read: " + std::generic_category().message(errno) + ".");
  }
}

void CheckWritable(sqlite3* handle, const std::string& path) {
  if (sqlite3_db_readonly(handle, "main") != 0 || ::access(path.c_str(), W_OK) != 0) {
    Refuse(StoreErrorCode::kReadOnly, path,
           "is read-only. Make it writable, or copy it to a folder of your own and open the copy.");
  }
  const std::string folder = GetPathFromFile(path);
  if (::access(folder.c_str(), W_OK) != 0) {
    Refuse(StoreErrorCode::kReadOnly, path,
           "lies in a folder that is read-only. Make the folder writable, or copy the project to a folder of "
           "your own.");
  }
}

Handle OpenHandle(const std::string& path, int flags) {
  sqlite3* raw = nullptr;
  const int code =
      sqlite3_open_v2(path.c_str(), &raw, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  Handle handle(raw);
  if (code != SQLITE_OK) throw MakeStoreError(raw, code, path, "");
  sqlite3_busy_timeout(raw, kLockWaitMs);
  sqlite3_db_config(raw, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(raw, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  return handle;
}

void Run(sqlite3* handle, const char* sql, const std::string& path) {
  const int code = sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw MakeStoreError(handle, code, path, sql);
}

/// "ormel (process 4711)": who has the file open; empty when nobody can be named.  From the system's list:
/// opening the file for the question would drop the locks that this program may hold on it.
std::string HolderOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return {};
  std::ifstream locks("/proc/locks");
  const std::string inode = ":" + std::to_string(info.st_ino) + " ";
  for (std::string line; std::getline(locks, line);) {
    if (line.find(inode) == std::string::npos) continue;
    std::istringstream words(line);  // "1: POSIX  ADVISORY  WRITE 4711 08:01:1234 0 EOF"
    std::string skipped;
    std::string process;
    words >> skipped >> skipped >> skipped >> skipped >> process;
    std::ifstream in("/proc/" + process + "/comm");
    std::string name;
    if (std::getline(in, name)) return name + " (process " + process + ")";
  }
  return {};
}

[[noreturn]] void RefuseInUse(const std::string& path) {
  const std::string holder = HolderOf(path);
  Refuse(StoreErrorCode::kInUse, path,
         "is open in " + (holder.empty() ? std::string("another program") : holder) +
             ". Close it there and try again.");
}

/// Takes the file for this program, which also undoes a command that a crash cut off.
void Lock(sqlite3* handle, const std::string& path) {
  Run(handle, "PRAGMA locking_mode=EXCLUSIVE", path);
  Run(handle, "BEGIN EXCLUSIVE", path);
  Run(handle, "COMMIT", path);
}

bool IsCutOff(int code) {
  return code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY ||
         (code & 0xFF) == SQLITE_CANTOPEN;
}

/// Undoes what a crash has cut off.  Only who may write can: for a moment, the file is taken for writing.
void Heal(const std::string& path) {
  const Handle writer = OpenHandle(path, SQLITE_OPEN_READWRITE);
  if (sqlite3_db_readonly(writer.get(), "main") != 0 || ::access(path.c_str(), W_OK) != 0 ||
      ::access(GetPathFromFile(path).c_str(), W_OK) != 0) {
    Refuse(StoreErrorCode::kReadOnly, path,
           "was being changed when a program was stopped, and putting it right needs to write: it, or its "
           "folder, is read-only. Make both writable, or copy the project and the file \"" +
               FileTitle(path) + "-journal\" together to a folder of your own.");
  }
  Lock(writer.get(), path);
}

void ReadTables(sqlite3* handle, const std::string& path) {
  const auto read = [handle] {
    return sqlite3_exec(handle, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
  };
  int code = read();
  if (IsCutOff(code)) {
    Heal(path);
    code = read();
  }
  if (code != SQLITE_OK) throw MakeStoreError(handle, code, path, "");
}

/// Does a line of the check tell of a row that breaks a rule, and not of a broken file?  Such a project
/// opens; writing the row again will be refused in clear words.
bool IsAboutRules(std::string_view line) {
  for (const std::string_view part : {"CHECK constraint failed", "NULL value in", " value in "}) {
    if (line.find(part) != std::string_view::npos) return true;
  }
  return false;
}

void CheckPages(Connection& connection) {
  PreparedStatement check(connection.shared_from_this(), "PRAGMA quick_check");
  while (check.Step()) {
    const std::string line(check.ColumnText(0));
    if (line == "ok" || IsAboutRules(line)) continue;
    Refuse(StoreErrorCode::kDamaged, connection.path(),
           "is damaged (" + line + "). Keep the file, and go on with a copy of it from before the damage.");
  }
}

/// What would run, or stand between the program and its rows, without the program having made it.
void CheckForeignObjects(Connection& connection) {
  PreparedStatement query(connection.shared_from_this(),
                          "select type, name from sqlite_master where type in ('trigger','view') "
                          "or (type='table' and lower(substr(sql,1,14))='create virtual')");
  if (!query.Step()) return;
  const std::string type(query.ColumnText(0));
  Refuse(
      StoreErrorCode::kNotAProject, connection.path(),
      "holds the " + std::string(type == "table" ? "virtual table" : type) + " \"" +
          std::string(query.ColumnText(1)) +
          "\", which Ormel did not make and which could change the model unseen. Remove it with a database "
          "tool, or go on with a copy from before.");
}

void CheckContent(Connection& connection) {
  CheckForeignObjects(connection);
  CheckPages(connection);
  if (connection.HasTable("Project") && connection.HasTable("Model")) return;
  Refuse(StoreErrorCode::kNotAProject, connection.path(),
         "has no tables of a project. Choose a file made by Ormel.");
}

/// The steps of OpenProjectFile on a file that can be reached.
std::shared_ptr<Connection> OpenChecked(const std::string& path, bool read_only) {
  Handle handle = OpenHandle(path, read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  const bool journal = HasJournal(handle.get());
  if (!journal) CheckHeader(Header(handle.get()), path);
  if (!read_only) {
    CheckWritable(handle.get(), path);
    Lock(handle.get(), path);
  }
  ReadTables(handle.get(), path);
  const Header header(handle.get());
  if (journal) CheckHeader(header, path);
  CheckSize(header, path);
  Run(handle.get(), "PRAGMA cell_size_check=ON", path);
  if (!read_only) Run(handle.get(), "PRAGMA journal_mode=DELETE", path);
  auto connection = std::make_shared<Connection>(handle.get(), path, read_only);
  handle.release();  // NOLINT(bugprone-unused-return-value): the connection owns it now
  CheckContent(*connection);
  return connection;
}

/// `open` with every failure in the words for a file.
template <class Open>
std::shared_ptr<Connection> Guarded(const std::string& path, const Open& open) {
  try {
    return open();
  } catch (const StoreError& error) {
    // None of the statements of opening is wrong by itself: the file does not answer them as a project does.
    if (error.code() == StoreErrorCode::kInUse) RefuseInUse(path);
    if (error.code() != StoreErrorCode::kSyntax) throw;
    Refuse(StoreErrorCode::kDamaged, path,
           std::string("is damaged (") + error.what() +
               "). Keep the file, and go on with a copy of it from before the damage.");
  }
}

/// A command of another program is on its way: its journal is in force.
bool JournalInForce(const std::string& path) {
  std::ifstream journal(path + "-journal", std::ios::binary);
  char first = 0;
  return journal.get(first) && first != 0;
}

/// The file's bytes between two commands of a program that has it open.  Read beside SQLite: this program
/// holds no lock on the file that could be lost by that.
std::string ReadBetweenCommands(const std::string& path) {
  constexpr int kTries = 40;
  constexpr std::chrono::milliseconds kPause{50};
  for (int i = 0; i < kTries; ++i) {
    std::error_code error;
    const auto before = std::filesystem::last_write_time(path, error);
    if (!JournalInForce(path)) {
      std::ifstream in(path, std::ios::binary);
      std::string bytes{std::istreambuf_iterator<char>(in), {}};
      if (in && !JournalInForce(path) && std::filesystem::last_write_time(path, error) == before)
        return bytes;
    }
    std::this_thread::sleep_for(kPause);
  }
  Refuse(StoreErrorCode::kInUse, path, "is just being changed by another program. Try again.");
}

std::shared_ptr<Connection> ViewOf(const std::string& path) {
  const std::string bytes = ReadBetweenCommands(path);
  Handle handle = OpenHandle(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  auto* copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size() + 1));
  if (copy == nullptr) throw MakeStoreError(nullptr, SQLITE_NOMEM, path, "");
  std::memcpy(copy, bytes.data(), bytes.size());
  const auto size = static_cast<sqlite3_int64>(bytes.size());
  const int code = sqlite3_deserialize(handle.get(), "main", copy, size, size,
                                       SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE);
  if (code != SQLITE_OK) throw MakeStoreError(handle.get(), code, path, "");
  const Header header(handle.get());
  CheckHeader(header, path);
  CheckSize(header, path);
  auto connection = std::make_shared<Connection>(handle.get(), path, false);
  handle.release();  // NOLINT(bugprone-unused-return-value): the connection owns it now
  connection->SetViewing();
  CheckContent(*connection);
  return connection;
}

}  // namespace

std::shared_ptr<Connection> OpenProjectFile(const std::string& given_path, bool read_only) {
  const std::string path = AbsolutePath(given_path);
  CheckPath(path);
  return Guarded(path, [&] { return OpenChecked(path, read_only); });
}

std::shared_ptr<Connection> OpenProjectView(const std::string& given_path) {
  const std::string path = AbsolutePath(given_path);
  CheckPath(path);
  try {
    // Undoes what a crash cut off, and tells what is no project.
    Guarded(path, [&] { return OpenChecked(path, true); })->Close();
  } catch (const StoreError& error) {
    if (error.code() != StoreErrorCode::kInUse) throw;
  }
  return Guarded(path, [&] { return ViewOf(path); });
}

std::shared_ptr<Connection> CreateProjectFile(const std::string& given_path) {
  const std::string path = AbsolutePath(given_path);
  std::error_code error;
  if (std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
    Refuse(StoreErrorCode::kFileExists, path, "exists already. Delete it first, or choose another name.");
  }
  const std::string folder = GetPathFromFile(path);
  if (!std::filesystem::is_directory(folder, error)) {
    Refuse(StoreErrorCode::kBadPath, path, "cannot be made: the folder does not exist.");
  }
  if (::access(folder.c_str(), W_OK) != 0)
    Refuse(StoreErrorCode::kReadOnly, path, "cannot be made: the folder is read-only.");
  Handle handle = OpenHandle(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  Lock(handle.get(), path);
  const std::string marks = "PRAGMA application_id=" + std::to_string(schema::kApplicationId) +
                            ";PRAGMA user_version=" + std::to_string(kStorageVersion);
  Run(handle.get(), marks.c_str(), path);
  auto connection = std::make_shared<Connection>(handle.get(), path, false);
  handle.release();  // NOLINT(bugprone-unused-return-value): the connection owns it now
  return connection;
}

}  // namespace ormel
