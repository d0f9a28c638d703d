// The elements of one kind with their places and what files of other programs say of them, in one statement.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

struct Ormel;

/// What a kind does not have stays at its default.  Lengths in computation units.
struct ElementRow {
  std::int64_t key = -1;         ///< ElementId::key
  std::string label;             ///< of a text label its text
  std::vector<MapPoint> points;  ///< in the order of the string; none for a string without vertices
  bool closed = false;           ///< a ring: domains, zones, closed barriers
  bool head_specified = false;
  bool drain = false;
  double value = 0.0;   ///< of a well head or discharge, of a test point the observed head, of a particle its
                        ///< elevation
  double radius = 0.0;  ///< of a well
  int label_type = 0;   ///< of a text label
};

/// Calls `row` for each element of wells, strings, barriers, domains, test points, particles, flux lines,
/// capture zones or labels, by rising identity.  The row is the reader's own and is used again for the next.
/// Do not change the elements meanwhile.
void ReadElementRows(Ormel& ormel, Element element, const std::function<void(const ElementRow&)>& row);

}  // namespace ormel
