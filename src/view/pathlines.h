// Pathlines with their marks of time and elevation, and the commands that set these.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/types.h"
#include "view/canvas.h"

namespace ormel {

struct Ormel;
struct PathSet;
class ResultFiles;

/// A mark on a path, in map coordinates.
struct Tic {
  MapPoint at;
  std::int64_t multiple = 0;  ///< of the spacing
};

/// Marks at equal times, for the steps that end inside the window.  None when the spacing is not positive.
/// `most`: no more marks than this are made.
std::vector<Tic> TimeTics(const PathSet& set, double spacing, const MapRect& window, std::size_t most);
/// Marks at whole multiples of the spacing in elevation, in the direction of the path.
std::vector<Tic> ElevationTics(const PathSet& set, double spacing, const MapRect& window, std::size_t most);

/// The scratch files "TICMARKST.TIC" and "TICMARKSZ.TIC" as last written.
struct TicFiles {
  std::string time_text, elevation_text;
  std::string folder;
};

/// Draws the paths of the last trace, and those of the wellhead protection areas while these are shown.  A
/// path that begins within 2.1 radii of a well with a colour of its own has that colour.
void ModelDrawPathlines(const MapCanvas& canvas, ResultFiles& files, TicFiles& tics);

/// Marks of one kind on one picture; more could not be told apart.
inline constexpr std::size_t kMostTics = 200'000;

/// Shows or hides the pathlines.
void PATHLINES(Ormel& ormel);
/// Time marks: item 0 shows or hides them, 1 to 3 set the spacing to 1, 2 or 5 years, 4 asks for it in days.
void TMARKS(Ormel& ormel, int index);
/// Elevation marks: shows or hides them; with `ask` set asks for the spacing.
void ZMARKS(Ormel& ormel, bool ask);

}  // namespace ormel
