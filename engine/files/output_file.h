// Files that appear whole or not at all.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace files {

/// A file that could not be read or written.  what() is a sentence that names the file and the system's
/// reason.
class FileError : public std::runtime_error {
 public:
  /// `error_number` is errno, or 0 when the reason is in `what_happened` already.
  FileError(const std::string& file, const std::string& what_happened, int error_number);
  const std::string& file() const { return file_; }
  int error_number() const { return error_number_; }

 private:
  std::string file_;
  int error_number_;
};

/// Writes into a temporary file in the same folder; Commit() gives it its name.  Without Commit() the
/// temporary file is removed and a file of that name that stood before stays as it was.
class OutputFile {
 public:
  explicit OutputFile(std::string path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  void Write(std::string_view text);
  /// Flushes, closes and renames.  Throws FileError; the destructor then removes the temporary file.
  void Commit();
  const std::string& path() const { return path_; }

 private:
  void Flush();

  std::string path_;
  std::string temporary_;
  std::string buffer_;
  int descriptor_ = -1;
};

/// Removes the temporary file that was opened last and is not closed yet.  For a signal handler that ends the
/// program.
void RemoveOpenFile() noexcept;

/// One text in one step.
void WriteWholeFile(const std::string& path, std::string_view text);

}  // namespace files
