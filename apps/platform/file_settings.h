// Per-user settings in a small text file.
#pragma once

#include <string>

#include "core/settings.h"

namespace ormel {

/// Lines `Key=Value` under the heading `[Startup]`; other headings, keys and lines survive a rewrite.  The
/// file is read anew at each question, so that two running programs see each other's values.
class FileSettings : public Settings {
 public:
  /// The file of the application VADOX2K in the user's configuration folder.
  FileSettings();
  explicit FileSettings(std::string path) : path_(std::move(path)) {}

  std::string GetSetting(std::string_view key, std::string_view default_value) const override;
  /// Throws FileError when the file cannot be written.
  void SaveSetting(std::string_view key, std::string_view value) override;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// $XDG_CONFIG_HOME, or ~/.config where it is not set.
std::string UserConfigFolder();

}  // namespace ormel
