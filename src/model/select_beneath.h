// What lies beneath the element that was selected.
#pragma once

namespace ormel {

struct Ormel;

/// Goes on from what is selected to the next element at the place of the last click, in the order of
/// document/elements_near.h, and from the last to the first.  False, and nothing changes, when there is no
/// other.
bool SelectBeneath(Ormel& ormel);

}  // namespace ormel
