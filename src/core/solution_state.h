// What is valid of the last solve, and how results are shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace ormel {

/// A streamline that the user asked for at a point of the map.
struct TracedLine {
  std::vector<MapPoint> points;
  std::vector<double> elevations;  ///< [computation length]
  std::vector<double> times;       ///< since the start [d]
};

/// Numbers that change with the model (document/fingerprint.h), by what is spoiled then.
struct Fingerprint {
  std::uint64_t solution = 0, contours = 0, paths = 0, rerun = 0;
  friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

/// The model that the run's files and the results tables belong to, and what the run gave.
struct SolvedModel {
  Fingerprint model;
  bool GridValid = false, ContoursValid = false, PathlinesValid = false;
};

struct SolutionState {
  bool ValidSolution = false;   ///< the results on view belong to the model as it stands
  bool PathlinesValid = false;  ///< the .PTH file belongs to the solution
  bool GridValid = false;       ///< the .GRD file belongs to the solution
  bool ContoursValid = false;   ///< CONTOUR.EXE has run on the grid
  bool results_drawn = false;
  /// Nothing: no run has ended well, or its files are gone.
  std::optional<SolvedModel> solved{};
  /// The valid solution is that of another model than the present one: the user kept it through a change, or
  /// reloaded it.  Whatever shows results says so.
  bool OfOlderModel = false;
  /// A program that shows results recognises the finished solve of an unchanged project when it opens it
  /// again; a script asks for it by its commands.
  bool restore_on_open = false;
  double SolutionTime = 0.0;    ///< for transient wells [d]
  double TimeTicSpacing = 0.0;  ///< along pathlines [d]; 0 means none
  double ElevationTicSpacing = 0.0;
  int size_number = 61;  ///< last result of ModelGetSize
  /// Of the solution on view: they go with it, or when the user clears them.
  std::vector<TracedLine> traced_lines{};
  bool whpa_calculated_exists = false;
  /// Stems of runs of protection areas that an edit has outdated (model/area_runs.h).
  std::vector<std::string> outdated_runs{};
  /// The tracing step "Use Default Step Size of": not stored in the project.
  bool use_default_step = true;
  double default_step = 0.0;  ///< 0.004 of the window's diagonal, set at each redraw [map units]
};

}  // namespace ormel
