// Paths and text line files.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ormel {

/// A file could not be read or written.  The message names file, reason and, where there is one, line.
class FileError : public std::runtime_error {
 public:
  FileError(std::string file, std::string reason, std::size_t line = 0);
  const std::string& file() const { return file_; }
  const std::string& reason() const { return reason_; }
  std::size_t line() const { return line_; }  // from 1; 0 = not about a line

 private:
  std::string file_, reason_;
  std::size_t line_;
};

inline constexpr char kPathSeparator = '/';

/// True when a file of that name is there and its attributes can be read.  A folder is no file.
bool FileExists(const std::string& path);
/// The folder of a path with its final separator; "" when the path names none.
std::string GetPathFromFile(std::string_view path);
/// What follows the last separator: "a/b.orm" gives "b.orm".
std::string FileTitle(std::string_view path);
/// The title cut before its first "." ("plan.v2.orm" gives "plan"); a title without "." as a whole.
std::string BaseName(std::string_view path);
/// Folder and name joined with exactly one separator.
std::string JoinPath(std::string_view folder, std::string_view name);

/// Reads a text file line by line; lines end with CR LF, LF or CR, the last one may end without.
class LineReader {
 public:
  static constexpr std::size_t kMaxLine = 1U << 20U;  // bytes

  /// Throws FileError when the file cannot be opened.
  explicit LineReader(const std::string& path);
  ~LineReader();
  LineReader(LineReader&&) noexcept;
  LineReader& operator=(LineReader&&) noexcept;

  /// False at the end of the file.  Throws FileError when reading fails or a line is longer than kMaxLine.
  bool Next(std::string& line);
  /// Number of the line that Next gave last, from 1; 0 before the first.
  std::size_t line_number() const { return line_number_; }
  const std::string& path() const { return path_; }

 private:
  bool Fill();
  struct File;
  std::string path_;
  std::unique_ptr<File> file_;
  std::size_t line_number_ = 0;
};

/// Writes a text file with CR LF lines.  The text goes to a temporary file in the same folder; Commit()
/// flushes it to the disk and gives it its name.  Without Commit() nothing is left and an older file of that
/// name stays as it was. Every failure throws FileError with the file's name and the reason.
class TextFileWriter {
 public:
  explicit TextFileWriter(const std::string& path);
  ~TextFileWriter();
  TextFileWriter(TextFileWriter&&) noexcept;
  TextFileWriter& operator=(TextFileWriter&&) noexcept;

  /// `line` and a line end.
  void Line(std::string_view line);
  /// `text` as it is.
  void Write(std::string_view text);
  void Commit();
  const std::string& path() const { return path_; }

 private:
  void Flush();
  void Discard() noexcept;
  struct File;
  std::string path_;
  std::unique_ptr<File> file_;
};

}  // namespace ormel
