// The steps that every opening of a project goes through; scripts without a map use them one by one.
#pragma once

#include <string>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// The path as a full one, seen from the program's present directory.
std::string FullPath(const Ormel& ormel, const std::string& path);

/// True when neither permissions nor the disk allow writing: nobody's write bit is set, or ours is not.
bool IsReadOnly(const std::string& path);

/// The tests before a project is opened for writing, each with its box: read-only, existence (with the offer
/// to make the project), version.  The file is looked at through a short read-only connection.
/// With `view`, a project that cannot be written is offered for viewing only; true there when the user
/// agrees.
bool TestProjectFile(Ormel& ormel, const std::string& path, bool* view = nullptr);

/// The last of these tests alone, for a file that is only looked at.
bool TestProjectVersion(Ormel& ormel, const std::string& path, bool* view = nullptr);

/// Opens the one connection; a refusal by the store becomes a box.
/// `view` as above; it is set already when the tests have found that the project can only be viewed.
bool OpenConnection(Ormel& ormel, const std::string& path, bool* view = nullptr);

/// Offers to set the folder of the intermediate files to the project's own.
void RepairBasePath(Ormel& ormel);

/// Map window, full extents, margins, scale and vertex tolerance from the project.  `has_maps` and `maps`:
/// the base maps' extents.  Opening does not move the stored origin of the last solve.
void RestoreWindows(Ormel& ormel, bool has_maps, const Extents& maps);

/// 10 to the integer part of the base-10 logarithm of the window's width.
double PowerOfTen(double width);

}  // namespace ormel
