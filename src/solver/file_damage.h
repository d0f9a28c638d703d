// What a reader of a solver file says when it cannot go on.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace ormel {

/// Bad data in a file is a value, with its place; readers never throw for what a file holds.
struct FileDamage {
  enum class Kind {
    kMissing,     ///< there is no such file
    kUnreadable,  ///< it is there and cannot be read
    kDamaged,     ///< its content is not what it should be
  };
  Kind kind = Kind::kDamaged;
  std::string file;
  std::size_t line = 0;  ///< from 1; 0 when it is not about a line
  std::string reason;

  /// "town.CTR, line 7: the point has no Y".
  std::string Message() const;
};

/// Nothing: the file was read to its end.
using ReadOutcome = std::optional<FileDamage>;

}  // namespace ormel
