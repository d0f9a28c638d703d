// What the last solve gave, in words and numbers: of which model and when, what the solver remarked, how well
// the conditions are met, and the water balance.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "document/elements.h"
#include "solver/user_labels.h"

namespace ormel {

struct Ormel;

struct LogLine {
  std::string text;
  std::string value;                  ///< with its unit; empty for a sentence
  std::optional<NamedElement> place;  ///< the element that it speaks of
  bool warning = false;
};

struct LogSection {
  std::string title;
  std::vector<LogLine> lines;
};

/// Sections without a line are left out.  Reads the listing and the error log of the last run.
std::vector<LogSection> ResultsLog(Ormel& ormel);

/// Differs whenever `ResultsLog` may say something else.
std::string ResultsKey(const Ormel& ormel);

/// Selects the element and brings it into the window.
void ShowNamed(Ormel& ormel, const NamedElement& element);
/// Brings all of the element into the window, which stays where it shows it already and keeps its scale where
/// that is large enough.
void BringIntoView(Ormel& ormel, const ElementId& id);

}  // namespace ormel
