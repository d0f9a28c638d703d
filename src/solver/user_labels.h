// What a user calls the elements that the solver's words name by their labels in the deck.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/types.h"

namespace ormel {

struct Ormel;

struct NamedElement {
  std::string label;  ///< the user's
  Vid vid = -1;       ///< its vertex, or the first one
  Pid pid = kSinglePoint;
};

/// "WL_000012" becomes "Town (WL_000012)", with or without numbers of a segment behind it; what is so named
/// already, or belongs to no element, stays.  `first` takes the first element that is named.
std::string WithUserLabels(Ormel& ormel, std::string_view text, std::optional<NamedElement>* first = nullptr);

/// What the user calls the element of a deck's label; the label itself when there is none, or it has no name.
std::string UserLabel(Ormel& ormel, const std::string& deck_label);

/// The same for a log of the solver, which is written anew where it names elements.  A file that cannot be
/// read or written stays as it is.
void NameElementsInLog(Ormel& ormel, const std::string& path);

/// Offers to show the element on the map, and selects it.
void OfferToShow(Ormel& ormel, const std::optional<NamedElement>& element);

}  // namespace ormel
