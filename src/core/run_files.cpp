#include "core/run_files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "core/ormel.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::array kExtensions{".DAT", ".SOL", ".XTR", ".PTH", ".CTR", ".GRD"};

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

}  // namespace

std::string ModelFile(const Ormel& ormel, std::string_view name) {
  const std::string& folder = ormel.project.OrmelBasePath;
  return ExistingOf(JoinPath(folder, name), JoinPath(folder, LowerAscii(name)));
}

std::string StemFile(const Ormel& ormel, std::string_view extension) {
  const std::string stem = JoinPath(ormel.project.OrmelBasePath, ormel.project.OrmelBaseName);
  return ExistingOf(stem + std::string(extension), stem + LowerAscii(extension));
}

void DeleteTolerantly(const std::string& path) {
  std::error_code ignored;
  if (FileExists(path)) std::filesystem::remove(path, ignored);
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
  for (const char* extension : kExtensions) DeleteTolerantly(ModelFile(ormel, std::string(stem) + extension));
}

}  // namespace ormel
