// The rows of `WHPAs` and the wells that they may name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

enum class WhpaType : int { kArbitrary = 1, kCalculated = 2, kMultiple = 3 };

/// A discharge-specified steady plain well that is no image.
struct WhpaWell {
  std::string label;
  Vid vid = -1;
  MapPoint at;
  double discharge = 0.0;  ///< positive when it takes water [L3/d]
  double radius = 0.0;     ///< [computation length]
};

/// The wells that a protection area may be drawn for, by label.
std::vector<WhpaWell> EligibleWells(Ormel& ormel);

struct WhpaRow {
  std::string Well;
  double Radius = 0.0;  ///< [map units]; 0 for pathlines
  double TimeOfTravel = 0.0, Porosity = 0.0, Thickness = 0.0, AmbientFlow = 0.0;
  double Direction = 0.0;  ///< where the ambient flow goes, degrees counter-clockwise from east
  double T = 0.0;          ///< dimensionless travel time
  double FirstHead = 0.0;  ///< head at the first boundary point [computation length]
  double WHPAData = 0.0;   ///< conductivity of the stream boundary case
  WhpaType Type = WhpaType::kArbitrary;
  bool Outline = false;  ///< a run of pathlines outlines the area too
};

/// Adds rows; `Shift` and the boundary points are 0 and the name of the run is "NONE".
void AddWhpaRows(Ormel& ormel, const std::vector<WhpaRow>& rows);
std::vector<WhpaRow> ReadWhpaRows(Ormel& ormel, std::string_view where);

/// Deletes the image wells of the rows that meet the condition, with their vertices, and then the rows.
/// The files of a pathline run among them are outdated.
void RemoveWhpaRows(Ormel& ormel, std::string_view where);
/// Deletes the vertices of the boundary points of these rows; the rows stay.
void DeleteBoundaryVertices(Ormel& ormel, std::string_view where);
/// Removes each row of a type whose well no longer exists and tells the user so; `closing` is the second
/// line.
void DropRowsOfMissingWells(Ormel& ormel, WhpaType type, const std::vector<WhpaWell>& wells,
                            std::string_view closing);

}  // namespace ormel
