// Texts of the program in the toolkit's type.
#pragma once

#include <QString>
#include <string_view>

namespace ormel {

/// From UTF-8.
inline QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace ormel
