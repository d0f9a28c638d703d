// A project as a copy in memory: to look at one that is read-only or that another program has open.
#pragma once

#include <string>

#include "store/database.h"

namespace ormel {

/// Opened by OpenMode::kView: the file as it stood then, between two commands of whoever has it open.  The
/// copy takes changes like any project, and none of them reaches the file.  Not for a file that this program
/// itself has open.
bool IsView(const Database& database);
/// The bytes of the copy, changes and all: a project file when they are written to one.
std::string ImageOf(const Database& database);

}  // namespace ormel
