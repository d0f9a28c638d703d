// Duplicating a project's file.
#pragma once

#include <string>

namespace ormel {

/// Copies a closed project and names the copy's intermediate files after its title.  The copy is written
/// under a temporary name, flushed to the disk, and takes its name when it is complete: a full disk leaves
/// both the source and an older file of the target's name as they were.  Throws FileError or StoreError.
void DuplicateProject(const std::string& source, const std::string& target);

}  // namespace ormel
