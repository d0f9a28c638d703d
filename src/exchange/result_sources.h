// Files of results for an export: whole, or not at all.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "solver/result_files.h"

namespace ormel {

struct Ormel;

/// In map coordinates.  Each throws FileError when the file is missing or damaged: a part of it would pass
/// for the whole.
std::shared_ptr<const ContourSet> WholeContours(Ormel& ormel, const std::string& file);
std::shared_ptr<const PathSet> WholePaths(Ormel& ormel, const std::string& file);

/// What a path is called after: the well that its START line names, by the user's label, or the particle by
/// its place in the order of its table, which is that of the deck.
class PathLabels {
 public:
  explicit PathLabels(Ormel& ormel) : ormel_(ormel) {}
  /// Of the next path of the file.
  std::string Of(const std::string& start);

 private:
  Ormel& ormel_;
  std::map<std::string, std::string> labels_;
  int particles_ = 0;
};

}  // namespace ormel
