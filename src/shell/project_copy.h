// Making and duplicating a project's file, so that no older file of its name is lost before it is complete.
#pragma once

#include <string>

namespace ormel {

struct NewDatabaseOptions;

/// Copies a closed project and names the copy's intermediate files after its title.  The copy is written
/// under a temporary name, flushed to the disk, and takes its name when it is complete: a full disk leaves
/// both the source and an older file of the target's name as they were.  Throws FileError or StoreError.
void DuplicateProject(const std::string& source, const std::string& target);

/// The same from the bytes of the project `source`, which is open for viewing.
void DuplicateImage(const std::string& image, const std::string& source, const std::string& target);

/// Makes a project under a temporary name beside `path`; it takes the place of an older file of that name
/// when it is complete.  Throws StoreError or FileError.
void MakeProjectFile(const std::string& path, const NewDatabaseOptions& options);

}  // namespace ormel
