// Opens a line file and turns every failure of reading it into a value.
#pragma once

#include <string>

#include "solver/file_damage.h"
#include "text/files.h"

namespace ormel {

/// Runs `read(LineReader&)`, which gives a ReadOutcome, on the file.
template <class Read>
ReadOutcome ReadGuarded(const std::string& path, Read&& read) {
  using Kind = FileDamage::Kind;
  if (!FileExists(path)) return FileDamage{Kind::kMissing, path, 0, "there is no such file"};
  try {
    LineReader lines(path);
    return read(lines);
  } catch (const FileError& failure) {
    return FileDamage{Kind::kUnreadable, path, failure.line(), failure.reason()};
  }
}

/// Damage at the line that the reader gave last.
inline FileDamage DamageAt(const LineReader& lines, std::string reason) {
  return {FileDamage::Kind::kDamaged, lines.path(), lines.line_number(), std::move(reason)};
}

}  // namespace ormel
