// Names of files that others may have chosen, and links that others may have laid.
#pragma once

#include <string>
#include <string_view>

#include "text/files.h"

namespace ormel {

/// A name that stays in its folder: no separator, no control character, not empty, not "." and not "..".
bool IsPlainName(std::string_view name);

/// A name beside `path` that nothing has: "<path>.<process>-<random digits><end>".
std::string TemporaryBeside(const std::string& path, std::string_view end);

/// Deletes a link that stands in the place of a work file of the program: whoever writes that file must not
/// write what the link leads to.  Only the project and what the user names may be a link.
void RemoveLink(const std::string& path);

/// A FileError because the disk, a quota or a limit of sizes is used up: the user can help it.
class DiskFullError : public FileError {
 public:
  using FileError::FileError;
};

}  // namespace ormel
