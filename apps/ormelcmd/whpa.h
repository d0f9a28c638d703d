// What the kinds of the subcommand `whpa` share.  Each drives the dialogs of the window by the names of their
// controls, so that every check of theirs applies.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "ormelcmd/options.h"

namespace ormel {

class BatchInterface;

/// Answers the dialogs that come up.
class DialogValues {
 public:
  explicit DialogValues(BatchInterface& ui) : ui_(ui) {}
  void Set(const char* form, const char* control, const std::string& value);
  void Set(const char* form, const char* control, double value);
  /// Chooses wells of a list that shows `offered`.  Throws UserError for a label that is not among them.
  void SetWells(const char* form, const char* control, const std::vector<std::string>& wells,
                const std::vector<std::string>& offered);

 private:
  BatchInterface& ui_;
};

/// outline, list
void DefineOutline(CLI::App& whpa, Program& program);

}  // namespace ormel
