// A path split into folder, base name and extension.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// Takes full paths only: one that begins with "/" where names of files do, or with a drive letter and ":".
/// In a title the characters ? * | / > < are refused, and ":" where no drive stands.  Errors are ShapeErrors.
class CFileName {
 public:
  void SetFileSpec(std::string_view path);
  void SetBaseName(std::string_view name);
  void SetExtension(std::string_view extension);

  std::string GetFileSpec() const;
  const std::string& GetFolder() const { return folder_; }  ///< with its separator
  const std::string& GetBaseName() const { return base_; }
  const std::string& GetExtension() const { return extension_; }  ///< without the point

 private:
  std::string folder_, base_, extension_;
};

}  // namespace ormel
