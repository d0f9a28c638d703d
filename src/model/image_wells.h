// The images of wells behind stream boundaries: they follow the wells that they are images of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// A well whose protection area has a stream boundary.
struct ImageSource {
  std::string well;
  MapPoint first, second;  ///< of the boundary
  MapPoint at;             ///< of the well
};
std::vector<ImageSource> ImageSources(Ormel& ormel);

/// Gives each of these wells the image that its area's boundary asks for, with the well's own rate, radius
/// and place; an image that stands is changed and keeps its identity.
void RemakeImageWells(Ormel& ormel);

/// A well carries another label: its areas and its image follow.
void RenameInAreas(Ormel& ormel, std::string_view from, std::string_view to);

bool HasProtectionArea(Ormel& ormel, std::string_view well);
/// Deletes the areas of a well with their image; boundary points go with the last area that has them.
void RemoveAreasOf(Ormel& ormel, const std::string& well);

/// Before these wells are deleted, each of which has protection areas: asks about the areas that would go
/// with them, and removes these.  False when the user keeps the wells.
bool AskToRemoveAreas(Ormel& ormel, const std::vector<std::string>& wells);
/// The same for the wells that fulfil a condition, of which some may have areas.
bool RemoveAreasOfWells(Ormel& ormel, const std::string& condition);

}  // namespace ormel
