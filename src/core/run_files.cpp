#include "core/run_files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "core/ormel.h"
#include "text/files.h"
#include "text/names.h"

namespace ormel {
namespace {

constexpr std::array kExtensions{".DAT", ".SOL", ".XTR", ".PTH", ".CTR", ".GRD"};
/// What a project may not be named, and where no link is followed.
constexpr std::array kWorkExtensions{".dat", ".sol", ".xtr", ".pth", ".ctr", ".grd", ".out",   ".run",
                                     ".log", ".ops", ".ini", ".tmp", ".def", ".lck", ".before"};
constexpr std::array kWorkNames{"ERROR.LOG",  "MESSAGE.LOG", "ECHO.LOG",   "REGRID.LOG",
                                "VADOX.OPS",  "VADOX1.INI",  "REGRID.DAT", "_INSPECT.DAT",
                                "_TRACE.DAT", "_RUN.JNL",    "_RUN.LCK"};
constexpr std::size_t kLongestPath = 512;

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

/// Either spelling of an extension or fixed name: programs of other systems write capitals.
std::string ExistingOf(const std::string& exact, const std::string& lower) {
  return !FileExists(exact) && FileExists(lower) ? lower : exact;
}

bool IsTemporaryOf(const std::string& name, const std::string& stem) {
  constexpr std::string_view kEnd = ".tmp";
  if (!name.starts_with(stem + ".") || !name.ends_with(kEnd)) return false;
  const std::string inner = name.substr(0, name.size() - kEnd.size());
  const std::size_t dot = inner.rfind('.');
  return dot > stem.size() && dot != std::string::npos && dot + 1 < inner.size() &&
         inner.find_first_not_of("0123456789-", dot + 1) == std::string::npos;
}

}  // namespace

std::string ModelFile(const Ormel& ormel, std::string_view name) {
  const std::string& folder = ormel.project.OrmelBasePath;
  return ExistingOf(JoinPath(folder, name), JoinPath(folder, LowerAscii(name)));
}

std::string StemFile(const Ormel& ormel, std::string_view extension) {
  const std::string stem = JoinPath(ormel.project.OrmelBasePath, ormel.project.OrmelBaseName);
  return ExistingOf(stem + std::string(extension), stem + LowerAscii(extension));
}

void RemoveWorkLinks(const Ormel& ormel, std::string_view stem) {
  const auto remove = [&ormel](const std::string& name) {
    RemoveLink(JoinPath(ormel.project.OrmelBasePath, name));
    RemoveLink(JoinPath(ormel.project.OrmelBasePath, LowerAscii(name)));
  };
  for (const char* name : kWorkNames) remove(name);
  for (const std::string& base : {std::string(stem), ormel.project.OrmelBaseName}) {
    for (const char* extension : kExtensions) remove(base + extension);
    for (const char* extension : {".OUT", ".RUN", ".ZNS"}) remove(base + extension);
  }
}

std::string FaultOfProjectName(const std::string& path) {
  const std::string name = FileTitle(path);
  const std::string quoted = "\"" + name + "\"";
  if (path.size() > kLongestPath)
    return "The path has " + std::to_string(path.size()) + " characters; at most " +
           std::to_string(kLongestPath) + " are possible. Choose a folder nearer to the root.";
  if (!IsPlainName(name))
    return "The name of a project may not be empty and may hold no tab and no line end. Choose another name.";
  if (name.front() == ' ' || name.back() == ' ' || name.front() == '.')
    return "The name " + quoted + " begins or ends with a blank or begins with a point. Choose another name.";
  const std::string lower = LowerAscii(name);
  for (const std::string_view extension : kWorkExtensions)
    if (lower.ends_with(extension))
      return "The name " + quoted +
             " is one that the files of a solve have, which would replace the project. Choose a name that "
             "ends with .orm.";
  if (BaseName(name).find_first_not_of(" ") == std::string::npos || BaseName(name).back() == ' ')
    return "The name " + quoted + " has a blank before its extension. Choose another name.";
  return {};
}

std::string SafeStem(std::string_view stem, const std::string& project) {
  return IsPlainName(stem) ? std::string(stem) : std::filesystem::path(project).stem().string();
}

void DeleteTolerantly(const std::string& path) {
  std::error_code ignored;
  if (FileExists(path)) std::filesystem::remove(path, ignored);
}

void ClearTemporariesOf(const std::string& folder, const std::vector<std::string>& stems) {
  std::error_code failure;
  std::vector<std::filesystem::path> found;
  const std::filesystem::directory_iterator end;
  for (std::filesystem::directory_iterator entry(folder, failure); !failure && entry != end;
       entry.increment(failure)) {
    const std::string name = entry->path().filename().string();
    for (const std::string& stem : stems)
      if (IsTemporaryOf(name, stem)) found.push_back(entry->path());
  }
  for (const std::filesystem::path& path : found) std::filesystem::remove(path, failure);
}

std::string FreeStem(const std::string& folder, std::string_view wanted) {
  const std::string base(wanted);
  std::string stem = base;
  const auto taken = [&] {
    return FileExists(JoinPath(folder, stem + ".RUN")) ||
           std::ranges::any_of(kExtensions, [&](const char* extension) {
             return FileExists(JoinPath(folder, stem + extension));
           });
  };
  for (int number = 2; taken(); ++number) stem = base + "_" + std::to_string(number);
  return stem;
}

void RemoveRunFiles(const Ormel& ormel, std::string_view stem) {
  if (stem.empty() || stem == "NONE") return;
  if (!IsPlainName(stem)) return;
  for (const char* extension : kExtensions) DeleteTolerantly(ModelFile(ormel, std::string(stem) + extension));
}

}  // namespace ormel
