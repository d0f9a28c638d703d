// World files: the place of an image on the map, in a small text file beside it.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace ormel {

/// True when a world file for the image is there; `extension` is then its extension, without the dot.
bool WorldFileExists(const std::string& image, std::string& extension);

/// Six lines: size of a pixel in x, 0, 0, size in y (negative for an image whose rows go down), and x and y
/// of the middle of its upper left pixel; each filled up with blanks to 24 characters.  Throws FileError.
void WriteWorldFile(const std::string& name, double a, double d, double e, double f);

/// x = g[0] + column g[1] + row g[2], y = g[3] + column g[4] + row g[5], from the corner of the upper left
/// pixel; nothing when the image has no world file, or one that does not hold six numbers.
std::optional<std::array<double, 6>> ReadWorldFile(const std::string& image);

}  // namespace ormel
