// The remembered directories: the file `Ormel.def` of the project folder, lines `<key> = <directory>`.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

struct Ormel;

inline constexpr std::string_view kNewProjectPathKey = "Default create new project path";
inline constexpr std::string_view kOpenProjectPathKey = "Open Project Path";

/// The directory of the next file dialog.  A missing `Ormel.def` is made with this one entry.
std::string ReadDefaultDirectory(Ormel& ormel, std::string_view key);
/// Records a directory under the key; other lines survive.  A folder that cannot be written is no failure:
/// the memory is a convenience.
void WriteDefaultDirectory(Ormel& ormel, std::string_view key, const std::string& directory);

}  // namespace ormel
