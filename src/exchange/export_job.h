// What all exports have in common: where to, may it be replaced, how far is it, and how it ended.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ormel {

struct Ormel;

/// The user has pressed Cancel: the export ends and leaves the older file as it was.
struct ExportCancelled {};

/// The wait box of an export or import, for the length of a block.
class ExportJob {
 public:
  /// `total`: records to come; 0 when nobody knows.
  ExportJob(Ormel& ormel, std::string_view text, std::size_t total);
  ~ExportJob();
  ExportJob(const ExportJob&) = delete;
  ExportJob& operator=(const ExportJob&) = delete;

  /// One record, or `records` of them, are done.  Throws ExportCancelled.
  void Step(std::size_t records = 1);

 private:
  Ormel& ormel_;
  std::size_t total_, done_ = 0, next_ = 0;
};

/// How a file is asked for.
struct ExportTarget {
  std::string_view key;  ///< of the remembered folder
  std::string_view title;
  std::string_view extension, filter;
  std::string suffix{};  ///< of the name offered: "<stem><suffix>.<extension>"; empty: no name is offered
};

/// The file to write, with its folder remembered; nothing when the user gave up.
std::optional<std::string> AskExportFile(Ormel& ormel, const ExportTarget& target);
/// The file to read; nothing when the user gave up.
std::optional<std::string> AskImportFile(Ormel& ormel, const ExportTarget& target);
/// False when the file stands there and is to stay, after the box with `abort` where that has words.
bool MayReplace(Ormel& ormel, const std::string& path, std::string_view abort);

/// Files that belong together, written in a folder beside their place and put there together.  Without
/// Commit() nothing is left and older files stay as they were.
class FileSet {
 public:
  /// `path`: any of the set, with its extension.  Throws FileError.
  explicit FileSet(const std::string& path);
  ~FileSet();
  FileSet(const FileSet&) = delete;
  FileSet& operator=(const FileSet&) = delete;

  /// Where to write the member with this extension ("shp").
  std::string Member(std::string_view extension);
  /// Puts the members in place, and removes those of the older set that would not fit the new one any more.
  void Commit(const std::vector<std::string_view>& outdated = {});

 private:
  std::string Target(const std::string& extension) const;
  std::string path_, stem_, folder_;
  std::vector<std::string> members_;
};

}  // namespace ormel
