// The listing of a run (.OUT): what was modelled, how well the conditions are met, the water balance.
#pragma once

#include <string>
#include <vector>

#include "aem/solution.h"
#include "vadox1/deck.h"

namespace vadox1 {

std::string ListingText(const aem::Solution& solution, const aem::Checks& checks, const MapOrigin& origin);

/// The lines on errors between the control points, for the listing and the message log.
std::string ChecksText(const aem::Checks& checks);

/// Warnings, with the element's label: heads off by more than a hundredth of the range of heads, walls that
/// leak more than a hundredth of the undisturbed flow.  Empty after a good solve.
std::vector<aem::Finding> ChecksFindings(const aem::Checks& checks);

}  // namespace vadox1
