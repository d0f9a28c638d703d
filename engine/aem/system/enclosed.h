// Regions that tight walls shut in, whether one closed wall does or several that cross and meet.
#pragma once

#include <utility>
#include <vector>

#include "aem/kernel/geometry.h"

namespace aem::detail {

struct Arrangement;
struct System;

struct Enclosure {
  std::vector<Complex> ring;                ///< around it, counter-clockwise; walls that end inside twice
  Complex inside;                           ///< a point in it, within no other
  std::vector<std::pair<int, double>> way;  ///< edges of the arrangement around it, 1 along and -1 against
  std::vector<int> walls;                   ///< in the model, each once, in the order met
};

/// Whether no water passes the wall.
bool IsTight(const System& system, int wall);

/// All regions but the unbounded one, smaller ones first.  Those thinner than the tolerance are left out.
std::vector<Enclosure> FindEnclosures(const System& system, const Arrangement& arrangement);

/// Where the point lies: index of the smallest enclosure around it, -1 outside of all.
int EnclosureAt(const std::vector<Enclosure>& enclosures, Complex at);

}  // namespace aem::detail
