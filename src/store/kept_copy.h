// Copies of a project that are kept beside it before it is changed as a whole.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// Keeps `bytes` as "<name>.<mark>.orm" beside the project `path`, on the disk when this returns; gives the
/// copy's path. An older copy is never replaced: one with the same bytes serves again, else the copy is
/// "<name>.<mark>-2.orm" and so on.  Throws StoreError.
std::string KeepCopy(const std::string& path, std::string_view bytes, std::string_view mark);

/// The whole file; throws StoreError when it cannot be read.  Not for a project that this program has open.
std::string FileBytes(const std::string& path);

}  // namespace ormel
