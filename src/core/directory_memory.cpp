#include "core/directory_memory.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include "core/ormel.h"
#include "core/processes.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

constexpr std::size_t kReadLimit = 32000;  ///< lines looked at
constexpr std::size_t kKeptLines = 1000;   ///< lines that survive a rewrite

std::string WithSeparator(std::string folder) {
  if (folder.empty() || folder.back() != kPathSeparator) folder += kPathSeparator;
  return folder;
}

std::string MemoryFile(const Ormel& ormel) {
  const std::string folder =
      ormel.project.folder.empty() ? ormel.processes().ProgramFolder() : ormel.project.folder;
  return WithSeparator(folder) + "Ormel.def";
}

std::string Entry(std::string_view key, const std::string& directory) {
  return std::string(key) + " = " + directory;
}

std::vector<std::string> ReadLines(const std::string& path, std::size_t limit) {
  std::vector<std::string> lines;
  std::ifstream in(path, std::ios::binary);
  std::string line;
  while (lines.size() < limit && std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

void WriteLines(const std::string& path, const std::vector<std::string>& lines) {
  try {
    RemoveLink(path);
    TextFileWriter out(path);
    for (const std::string& line : lines) out.Line(line);
    out.Commit();
  } catch (const FileError&) {
    // The memory of directories is a convenience: a folder that takes no file still takes a project.
  }
}

}  // namespace

std::string ReadDefaultDirectory(Ormel& ormel, std::string_view key) {
  const std::string path = MemoryFile(ormel);
  const std::string program = WithSeparator(ormel.processes().ProgramFolder());
  if (!FileExists(path)) {
    const std::string present = ormel.processes().CurrentDirectory();
    WriteLines(path, {Entry(key, present)});
    return present;
  }
  std::string value;
  for (const std::string& line : ReadLines(path, kReadLimit))
    if (line.starts_with(key)) value = line.substr(std::min(line.size(), key.size() + 3));
  if (value.empty()) return program;
  return WithSeparator(value);
}

void WriteDefaultDirectory(Ormel& ormel, std::string_view key, const std::string& directory) {
  const std::string path = MemoryFile(ormel);
  std::vector<std::string> lines = ReadLines(path, kKeptLines);
  const auto found = std::find_if(lines.begin(), lines.end(),
                                  [key](const std::string& line) { return line.starts_with(key); });
  if (found == lines.end()) {
    lines.push_back(Entry(key, directory));
  } else {
    *found = Entry(key, directory);
  }
  WriteLines(path, lines);
}

}  // namespace ormel
