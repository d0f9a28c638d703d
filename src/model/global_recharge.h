// A recharge rate of the aquifer, which acts nowhere by itself.
#pragma once

namespace ormel {

struct Ormel;

/// Says what a recharge rate of the aquifer that is not zero does, and offers a domain around the model that
/// carries it.  True when the domain was made: then the aquifer's rate is zero, and so is what domains that
/// do not change recharge had taken over from it, since the rates of overlapping domains add up.
bool OfferRechargeDomain(Ormel& ormel);

}  // namespace ormel
