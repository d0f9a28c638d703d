#include "exchange/file_name.h"

#include "exchange/shapes.h"

namespace ormel {
namespace {

constexpr std::string_view kInvalid = "The FileSpec is invalid";
constexpr std::string_view kRefused = "?*|/><";

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

void Check(bool good, const char* source) {
  if (!good) throw ShapeError(source, std::string(kInvalid));
}

bool Clean(std::string_view text, std::string_view refused) {
  return text.find_first_of(refused) == std::string_view::npos;
}

}  // namespace

void CFileName::SetFileSpec(std::string_view path) {
  constexpr const char* kSource = "C_FileName::SetFileSpec";
  Check(!path.empty(), kSource);
  const bool drive = path.size() > 1 && IsLetter(path[0]) && path[1] == ':';
  Check(drive || path[0] == '/', kSource);
  const std::size_t last = path.rfind(drive ? '\\' : '/');
  Check(last != std::string_view::npos, kSource);
  const std::string_view folder = path.substr(0, last + 1), title = path.substr(last + 1);
  Check(Clean(title, kRefused) && Clean(title, ":"), kSource);
  if (drive) Check(Clean(folder.substr(2), kRefused) && Clean(folder.substr(2), ":"), kSource);
  const std::size_t point = title.rfind('.');
  Check(point != 0 && !title.empty(), kSource);
  folder_ = folder;
  base_ = title.substr(0, point);
  extension_ = point == std::string_view::npos ? std::string_view() : title.substr(point + 1);
}

void CFileName::SetBaseName(std::string_view name) {
  constexpr const char* kSource = "C_FileName::SetBaseName";
  Check(!name.empty(), kSource);
  Check(Clean(name, kRefused) && Clean(name, ":\\."), kSource);
  base_ = name;
}

void CFileName::SetExtension(std::string_view extension) {
  // Two of the checks name the other procedure, as they always have.
  Check(Clean(extension, kRefused), "C_FileName::SetBaseName");
  Check(Clean(extension, ":\\"), "C_FileName::SetBaseName");
  Check(Clean(extension, "."), "C_FileName::SetExtension");
  extension_ = extension;
}

std::string CFileName::GetFileSpec() const {
  return folder_ + base_ + (extension_.empty() ? "" : "." + extension_);
}

}  // namespace ormel
