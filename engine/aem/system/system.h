// The insides of a Solution: elements as arrays, unknowns, control points.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "aem/kernel/aquifer.h"
#include "aem/kernel/grading.h"
#include "aem/kernel/piece.h"
#include "aem/kernel/sources.h"
#include "aem/kernel/theis.h"
#include "aem/solution.h"
#include "aem/system/enclosed.h"
#include "aem/system/features.h"

namespace aem::detail {

class AreaField;
class FarField;
class FineField;
struct Linearised;

/// Coefficients that an unknown gives to a piece: c_n += coefficient[n] * x[unknown].
struct Term {
  int unknown = -1;
  std::array<double, kMaxBasis> coefficient{};
};

/// Where a piece comes from.  Sinks: a part of a segment.  Doublets: a part of an edge of the arrangement.
struct PieceOwner {
  int string = -1, segment = -1;  ///< of a sink
  double start = 0.0, end = 1.0;  ///< position of the piece's `from` and `to` along that segment
  int edge = -1;                  ///< of a doublet: index in System::edges
  bool law = false;               ///< a link that follows a power of the distance to a place, power_law.h
  bool blind = false;             ///< one of the last of these, see kBlindLinks
};

/// A straight edge that carries a jump of the potential: between zones, or a wall, or both.
struct JumpEdge {
  Complex from, to;
  Zone left, right;
  int wall = -1;                  ///< index in the model's walls, -1: a change of properties only
  int domain = -1, segment = -1;  ///< a domain whose ring runs here (or the wall's), and its vertex before
  int drawn = -1;                 ///< edge of the arrangement
  std::vector<int> pieces;        ///< in order from `from` to `to`
};

enum class Condition : unsigned char {
  kHead,        ///< potential of the given head
  kResistance,  ///< flow through a bed
  kScreen,      ///< head of a partially penetrating well
  kEdge,        ///< one head on both sides
  kWall,        ///< no flow, or flow by the difference in head: what elements other than doublets give
  kWallStream,  ///< the same: stream function of the doublets, tested with slopes instead of values
  kWallHead,    ///< of a leaky wall between two zones: the part that depends on the mean potential
  kBalance,     ///< nothing comes from infinity: discharges sum up to 0
  kNone,        ///< the unknown stays 0
};

/// What is taken from the field at a control point.
enum class FieldKind : unsigned char { kPotential, kNormalFlow, kDoubletStream };

/// Whether the condition says something of the head at its point.
inline bool TellsHead(Condition c) {
  return c != Condition::kWall && c != Condition::kWallStream && c != Condition::kBalance &&
         c != Condition::kNone;
}

inline FieldKind KindOf(Condition c) {
  return c == Condition::kWall         ? FieldKind::kNormalFlow
         : c == Condition::kWallStream ? FieldKind::kDoubletStream
                                       : FieldKind::kPotential;
}

/// A control point: a * field + b * strength = r, moments of which make the equations.
struct Control {
  Complex at, toward;      ///< `toward`: on which side of elements through the point it lies, 0 if anywhere
  int piece = -1;          ///< the piece that it belongs to
  int unknown = -1;        ///< of an element that is no piece
  int element = -1;        ///< kScreen: the partially penetrating well
  bool at_end = false;     ///< kWallStream: the value at an end where the wall meets a domain's edge
  double parameter = 0.0;  ///< on the piece
  double weight = 1.0;
  double test_cut = 0.0;  ///< on a wall's link: the test function is lowered by this and begins there with 0
  Condition condition = Condition::kHead;
  double head = 0.0;  ///< given
  Zone zone;          ///< at the point; for an edge that on the left
  Zone right;         ///< for an edge that on the right
};

/// Index in kOrders of every line, so that each gets the order that its errors ask for.
struct Orders {
  int start = kFullOrder;
  std::vector<std::vector<unsigned char>> of_segment;  ///< [string][segment]
  std::vector<unsigned char> of_edge;  ///< index in System::edges; empty before these are known
};

/// Ground that is left out of the computation.
struct IgnoredRegion {
  int wall = -1;       ///< that asks for it; -1: shut in by several without a given head
  bool inside = true;  ///< what lies inside is ignored, else what lies outside
  std::vector<Complex> ring;
  std::vector<std::pair<int, double>> way;  ///< without a wall: Enclosure::way
};

/// Elements, unknowns and state of a model.
struct System {
  Model model;
  Options options;
  std::vector<Finding> findings;
  std::size_t validated = 0;  ///< findings of the validation; those of building follow
  bool refused = false;
  double time = 0.0;

  Zones zones;
  std::vector<std::vector<Complex>> rings;  ///< of the domains, cleaned
  Box extent;                               ///< around all elements and the layout window
  double tolerance = 0.0;                   ///< distance below which vertices are one [L]
  Complex origin;                           ///< where uniform flow has potential 0

  std::vector<WellSource> wells;          ///< the model's wells in order
  std::vector<WellSource> partial_wells;  ///< far field of the partially penetrating wells, in order
  std::vector<std::pair<TheisRecord, double>> theis;  ///< with the conductivity where the well stands
  std::vector<DiskSource> disks;
  std::vector<AreaSource> areas;
  std::vector<Piece> pieces;
  std::vector<PieceOwner> owners;
  std::vector<std::vector<Term>> terms;
  std::vector<double> coefficients;  ///< kMaxBasis a piece
  std::vector<Moments> moments;
  std::shared_ptr<const FarField> far;         ///< none: everything is summed directly
  std::shared_ptr<const FineField> fine;       ///< before `far`, where very many points are asked
  std::shared_ptr<const AreaField> far_areas;  ///< areas and disks of given rate; none: summed directly
  std::vector<JumpEdge> edges;
  std::vector<Enclosure> enclosures;  ///< by tight walls, smaller ones first
  std::vector<IgnoredRegion> ignored;
  /// By unknown: a jump at a node where a wall meets domain edges, decided by the condition of the edges
  /// alone.
  std::vector<char> edge_only;
  std::vector<std::vector<std::vector<Part>>> segment_parts;   ///< [string][segment]
  std::vector<std::vector<std::vector<double>>> segment_cuts;  ///< [string][segment] crossings with edges
  /// By string, segment and end (0 where it begins): EndShape::power.
  std::map<std::array<int, 3>, double> end_power;
  std::vector<std::vector<int>> flag_of;  ///< [string][segment] index in flags
  std::vector<int> flows_into;            ///< string that a routed stream continues in, -1 none
  std::vector<int> stream_order;          ///< routed streams, upstream first
  std::vector<double> carried;            ///< by flag index: flow available to a routed reach [L3/d]
  std::vector<double> carried_given;      ///< by flag: the part of `carried` that no unknown gives
  /// By flag, of limited reaches only: the rest of `carried` as a sum over unknowns.
  /// Behind them the discharge of the whole model, and in carried_given what of it no unknown gives.
  std::vector<std::vector<std::pair<int, double>>> carried_terms;
  std::vector<int> switches;  ///< by flag index: how often it has changed
  /// Walls around ignored ground: integral of the jump along each as a sum over unknowns.
  std::vector<std::vector<std::pair<int, double>>> loops;
  SegmentIndex edge_index;                      ///< over edges
  Features features;                            ///< ends and corners that lines near them are divided for
  std::vector<std::pair<int, int>> segment_of;  ///< string and segment of each entry of segment_index
  SegmentIndex segment_index;
  std::vector<std::vector<std::vector<int>>> segment_pieces;  ///< [string][segment] in order

  Orders orders;

  // unknowns; x[0] is the constant
  std::vector<double> x;
  std::vector<Control> controls;
  std::vector<unsigned char> flags;  ///< states of conditions that switch, one a segment or piece
  int iterations_done = 0;
  bool converged = false;

  explicit System(Model m, Options o);

  void Add(Severity severity, const Origin& origin_of, std::string text);

  // build.cpp
  void Build();
  void Rebuild();  ///< with the present orders; unknowns are 0 then
  void BuildOnce();
  void Clear();
  int NewUnknown() {
    x.push_back(0.0);
    return int(x.size()) - 1;
  }
  int AddPiece(const Piece& piece, const PieceOwner& owner);
  void SetCoefficients();  ///< from x

  /// Terms of the discharge of the whole model, for Condition::kBalance.
  void SumDischarges();

  // routing.cpp
  /// Flow that each routed reach can lose, from the present strengths.
  void Route();
  /// Switches drains and reaches by the present heads; returns how many changed.
  int SwitchStates(const std::vector<double>& field, bool only_off);

  // field.cpp
  bool Ignored(Complex at) const;
  /// What comes from anything but pieces; transient wells left out.
  Flow Around(Complex at) const;
  /// The same without wells.
  Flow Background(Complex at) const;
  Flow PieceFlow(int piece, Complex at, Complex toward) const;
  /// Builds the hierarchical scheme for the present strengths, where it pays.
  void PrepareField();
  /// Has `fine` answer from now on, until strengths change.
  void PrepareManyPoints();
  /// Everything: omega with real part the potential, w = Qx - i Qy.
  Flow Field(Complex at, Complex toward) const;
  /// The same without transient wells.
  Flow SteadyField(Complex at, Complex toward) const;
  Zone ZoneAt(Complex at, Complex toward) const;
  PointState State(Complex at, Complex toward = {}) const;
  /// The edge through the point, -1 if none.
  int EdgeAt(Complex at) const;

  // adapt.cpp
  /// Orders to begin with, by the size of the model.
  void StartOrders();
  /// Raises the orders of lines whose conditions fail at the control points, by what was solved there; false:
  /// none does, or the memory meant for it is used.
  bool RaiseOrders(const std::vector<Linearised>& linear, const std::vector<double>& field,
                   const std::vector<double>& strength);

  /// Orders of all lines in the order of the model; loading them needs Rebuild.  False: they fit another
  /// model.
  std::vector<unsigned char> SaveOrders() const;
  bool LoadOrders(const std::vector<unsigned char>& all);

  // solve.cpp
  IterationReport Iterate(int asked, const ProgressCallback& progress);
};

/// Runs body(begin, end) over [0, count) on up to `threads` threads, in blocks.  The first exception of any
/// of them ends the work and reaches the caller.
void ParallelFor(int threads, std::size_t count, const std::function<void(std::size_t, std::size_t)>& body);

}  // namespace aem::detail
