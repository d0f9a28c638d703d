// The update of a project of an older version, with its boxes.
#pragma once

#include <cstdint>
#include <string>

namespace ormel {

struct Ormel;

/// Updates the closed project after the user agreed; true when it can be opened now.  A copy of the project
/// as it was is kept beside it, and named when the update fails: the project is then as it was.
bool DBUpdate(Ormel& ormel, const std::string& path, std::int64_t version);

}  // namespace ormel
