// The file of capture zones (*.ZNS).
//
//   * ...                                comment
//   WELL x y discharge label             a well; its zones or its refusal follow
//   ENDS count reason                    how many of the paths that were followed ended so
//   ZONE time area pumped pores recharge surface edge left-out shared balance
//   RING count                           first the outline, counter-clockwise, then holes, clockwise
//   x y                                  so many lines
//   REFUSED sentence                     no zones: why
//   DONE                                 the file is whole
//
// Lengths in computation units, time in days.  `pumped` is discharge times time; pores, recharge, surface,
// edge and left-out tell where that water came from [L3]; `balance` is what they miss of it, in parts of it;
// `shared` is the ground whose upper water goes elsewhere [L2].
#pragma once

#include <span>
#include <string>

#include "zones/zone.h"

namespace vadox1 {

std::string ZonesText(std::span<const zones::WellZones> wells, double tolerance);

}  // namespace vadox1
