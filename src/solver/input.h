// What is solved, as a value: a snapshot of the model and of the settings of its run.
//
// Places are model coordinates [computation length]; heads, elevations, radii and rates are in computation
// units and days, with the signs of the store.  Writing a deck needs this and nothing else.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"
#include "solver/deck_blocks.h"

namespace ormel {

struct Ormel;

struct InputVertex {
  Seq seq = 0;
  ModelPoint at;
  MapPoint on_map;  ///< for the rows of results, which stand on the map
};

/// The kinds of wells, in the order of the deck.
enum class WellKind { kDischarge, kHead, kPartialDischarge, kPartialHead, kTransient, kDisk, kHeadDisk };
inline constexpr std::size_t kWellKinds = 7;

struct WellInput {
  Vid vid = 0;
  std::string label;
  InputVertex place;
  double head = 0.0;  ///< the rate where the well is not head-specified
  double radius = 0.0, top = 0.0, bottom = 0.0, time = 0.0, start_head = 0.0, storage = 0.0;
  bool cyclic = false;
  std::int64_t cycles = 0;
  bool image = false;  ///< belongs to the protection areas: counted, never written
};

struct StringInput {
  Pid pid = 0;
  std::string label;
  double resistance = 0.0, width = 0.0, depth = 0.0;
  bool drain = false, farfield = false;
  std::int64_t location = 0;
  double end_inflow = 0.0, overland_flow = 0.0;
  bool end_stream = false;
  std::optional<std::string> scenario{};  ///< resistance of an export
  std::vector<InputVertex> vertices;
  /// Head, or discharge per length, at the middle of each segment; one less than vertices.
  std::vector<double> values;
};

struct DomainInput {
  Pid pid = 0;
  std::string label;
  std::optional<double> conductivity{}, base{}, head{}, porosity{};  ///< nothing: left as they are
  double recharge = 0.0;                                             ///< into the aquifer is positive
  std::vector<InputVertex> vertices;
};

struct WallInput {
  Pid pid = 0;
  std::string label;
  std::int64_t closed = 0;  ///< 0 open, 1 closed, 2 keeps the outside, 3 keeps the inside
  double conductivity = 0.0, thickness = 0.0, porosity = 0.0, bottom = 0.0;
  std::vector<InputVertex> vertices;
};

struct SolverInput {
  std::string stem;
  MapPoint origin;  ///< lower left corner of the model on the map
  int units_code = 2;
  DeckWindow window{};
  AquiferBlock aquifer;
  std::vector<DomainInput> domains;
  std::vector<WallInput> walls;
  std::array<std::vector<WellInput>, kWellKinds> wells;
  std::vector<StringInput> by_discharge, by_head, routed;
};

/// What a run asks of a solution: extraction, grid and paths.
struct OutputInput {
  std::string stem;
  double solution_time = 0.0;  ///< [d]
  DeckWindow window{};
  ExtractBlock extract;
  std::optional<int> grid_points{};  ///< nothing: no grid
  std::optional<TraceBlock> trace{};
};

/// The window of the map as a layout has it: left, bottom, right, top.
DeckWindow LayoutWindow(const Ormel& ormel);

/// Needs the extents of ModelCheckExtents.  Reads and changes nothing.  Linear in the number of vertices.
SolverInput ReadSolverInput(Ormel& ormel);
/// Needs the model's origin (ModelCheckExtents or ModelRestoreModelOrigin).
OutputInput ReadOutputInput(Ormel& ormel);
/// The particles of the model.  `SatdThick` says which of them start at the aquifer's top: those where it is
/// 1 in the model's own runs (`top_when` true), those where it is 0 in the runs of protection areas.
std::vector<TraceBlock::Particle> ReadParticles(Ormel& ormel, bool top_when);

/// The tracing step [computation length]: the default for the window, or the user's own.
double TracingStep(const Ormel& ormel, double own_step);

}  // namespace ormel
