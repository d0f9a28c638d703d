#include "platform/file_settings.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "text/files.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr std::string_view kSection = "[Startup]";

/// A value stands on one line: line ends and the escape sign itself are escaped.
std::string Escaped(std::string_view value) {
  std::string text;
  for (const char c : value) {
    if (c == '\\') {
      text += "\\\\";
    } else if (c == '\n') {
      text += "\\n";
    } else if (c != '\r') {
      text += c;
    }
  }
  return text;
}

std::string Unescaped(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      ++i;
      value += text[i] == 'n' ? '\n' : text[i];
    } else {
      value += text[i];
    }
  }
  return value;
}

/// A file that is missing or cannot be read holds nothing: the settings are a convenience.
std::vector<std::string> ReadLines(const std::string& path) {
  std::vector<std::string> lines;
  if (!FileExists(path)) return lines;
  try {
    LineReader in(path);
    for (std::string line; in.Next(line);) lines.push_back(line);
  } catch (const FileError&) {
    lines.clear();
  }
  return lines;
}

bool IsEntry(std::string_view line, std::string_view key) {
  const std::size_t equals = line.find('=');
  return equals != std::string_view::npos && EqualNoCase(Trim(line.substr(0, equals)), key);
}

/// Where the key's line stands in its section, or where it belongs: `found` tells which.
struct Place {
  std::size_t index = 0;
  bool found = false;
  bool has_section = false;
};

Place Find(const std::vector<std::string>& lines, std::string_view key) {
  Place place{lines.size(), false, false};
  bool inside = false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string_view line = Trim(lines[i]);
    if (line.starts_with('[')) {
      inside = EqualNoCase(line, kSection);
      if (inside) place = {i + 1, false, true};
    } else if (inside && IsEntry(line, key)) {
      return {i, true, true};
    } else if (inside && !line.empty()) {
      place.index = i + 1;
    }
  }
  return place;
}

}  // namespace

std::string UserConfigFolder() {
  if (const char* folder = std::getenv("XDG_CONFIG_HOME"); folder != nullptr && folder[0] == '/')
    return folder;
  const char* home = std::getenv("HOME");
  return JoinPath(home == nullptr ? "/" : home, ".config");
}

FileSettings::FileSettings() : path_(JoinPath(JoinPath(UserConfigFolder(), "VADOX2K"), "settings.ini")) {}

std::string FileSettings::GetSetting(std::string_view key, std::string_view default_value) const {
  const std::vector<std::string> lines = ReadLines(path_);
  const Place place = Find(lines, key);
  if (!place.found) return std::string(default_value);
  const std::string& line = lines[place.index];
  return Unescaped(std::string_view(line).substr(line.find('=') + 1));
}

void FileSettings::SaveSetting(std::string_view key, std::string_view value) {
  std::vector<std::string> lines = ReadLines(path_);
  const std::string entry = std::string(key) + "=" + Escaped(value);
  Place place = Find(lines, key);
  if (place.found) {
    if (lines[place.index] == entry) return;
    lines[place.index] = entry;
  } else {
    if (!place.has_section) {
      lines.emplace_back(kSection);
      place.index = lines.size();
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place.index), entry);
  }
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), error);
  if (error) throw FileError(path_, error.message());
  TextFileWriter out(path_);
  for (const std::string& line : lines) out.Line(line);
  out.Commit();
}

}  // namespace ormel
