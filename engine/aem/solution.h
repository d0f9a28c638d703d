// The groundwater model solved by analytic elements: build it from a Model, iterate, ask.
//
// Units: the model's length L and days.  Discharge vectors are per width of aquifer [L2/d]: Qx = -dPhi/dx.
// A discharge, a sink density or a rate is positive when water leaves the aquifer.  All const members may be
// called from several threads at once; Iterate, LoadState and SetTime may not run beside anything else.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "aem/model.h"
#include "aem/results.h"

namespace aem {

namespace detail {
class System;
}

/// How bad a finding is: a fatal one means that no number can be trusted and the model is refused.
enum class Severity { kNote, kWarning, kFatal };

/// Something to tell the user about the input or the solution, in a sentence that names the remedy.
struct Finding {
  Severity severity = Severity::kNote;
  std::string label;  ///< of the element in the deck; empty when the whole model is meant
  int line = 0;       ///< of the deck; 0 when the whole model is meant
  std::string text;
};

/// Called after each step with the iteration's number, the number asked for and a word on what was done.
/// Returning false cancels: the state is then that of the last whole iteration.
struct Progress {
  int iteration = 0;
  int asked = 0;
  double fraction = 0.0;  ///< of the present iteration, 0 to 1
  double change = 0.0;    ///< largest change of head in the last whole iteration [L]
  std::string what;
};
using ProgressCallback = std::function<bool(const Progress&)>;

struct IterationReport {
  int iterations = 0;  ///< done in this call
  bool converged = false;
  bool cancelled = false;
  double change = 0.0;            ///< largest change of head in the last iteration [L]
  double residual = 0.0;          ///< of the linear system, relative to its right side
  int linear_steps = 0;           ///< of all linear solutions of this call; 0: by factorisation
  std::vector<Finding> findings;  ///< of this call, e.g. that it did not converge; also in Findings()
};

struct Options {
  int threads = 0;            ///< 0: as many as the machine has
  int extra_iterations = 60;  ///< allowed beyond the asked ones while conditions that depend on head change
  double accuracy = 1e-4;  ///< error of heads along lines that orders are chosen for, by the range of heads
  std::size_t factorise = 600;    ///< unknowns up to which a linear system is factorised and not iterated
  bool direct_summation = false;  ///< no hierarchical scheme: every element summed one by one
};

class Solution {
 public:
  /// Validates the model and prepares its elements.  Bad input becomes findings, never an exception.
  explicit Solution(Model model, Options options = {});
  ~Solution();
  Solution(Solution&&) noexcept;
  Solution& operator=(Solution&&) noexcept;

  const Model& GetModel() const;
  /// What validation and the iterations so far had to say.
  const std::vector<Finding>& Findings() const;
  /// True after a fatal finding: Iterate does nothing and every point is kIgnored.
  bool Refused() const;
  /// Unknowns of the linear system.
  std::size_t Unknowns() const;

  // --- solving ------------------------------------------------------------------------------------------
  /// At least `asked` iterations (values below 1 count as 1), then more up to Options::extra_iterations while
  /// conditions that depend on head still change.  A linear model is done after one and stops there.
  IterationReport Iterate(int asked, const ProgressCallback& progress = {});
  /// All unknowns and the state of the iteration.  The bytes are of this machine's byte order; the caller
  /// keeps the model, a version and a checksum beside them.  Loading them into a Solution of the same Model
  /// gives bit-equal answers and the same further iterations.
  std::vector<std::byte> SaveState() const;
  /// False, and nothing changed, when the bytes do not fit the model.
  bool LoadState(std::span<const std::byte> state);
  /// Time at which transient wells are superposed [d]; 0 after construction.
  void SetTime(double days);
  double Time() const;

  // --- the field ----------------------------------------------------------------------------------------
  /// Before very many questions about the same ground, such as the paths of an outline: what is found of
  /// small cells of it is kept from now on (memory: 240 MB at most), until the solution changes.  Answers
  /// differ from those without by less than 1e-8 of the field.  May not run beside anything else.
  void PrepareManyPoints();
  /// The state at one point; cheap enough for a particle tracer.
  PointState At(Complex point) const;
  /// The same at many points, threaded.  Pre: both spans have one size.
  void Evaluate(std::span<const Complex> points, std::span<PointState> states) const;
  /// Head and discharge at an elevation: differs from At only within a few thicknesses of a partially
  /// penetrating well, where the flow is three-dimensional.  `vertical` receives the specific discharge
  /// upward [L/d] that the well adds there (0 elsewhere; the part from recharge and the water table is the
  /// tracer's).
  PointState AtElevation(Complex point, double elevation, double* vertical) const;
  /// Head from potential at a point [L]; kNotSet where dry.
  double HeadOf(Complex point, double potential) const;
  /// The largest head difference among control points, wells and window corners [L]: what errors are measured
  /// by.
  double HeadRange() const;

  // --- where things lie, for tracing -----------------------------------------------------------------------
  /// The nearest well, disk centre excluded, or line-sink segment within `distance` of the point.
  SinkHit NearestSink(Complex point, double distance) const;
  /// The first thing crossed by the straight step from `from` to `to`, `from` itself excluded.
  Crossing FirstCrossing(Complex from, Complex to) const;
  /// Sink density of a segment at a position from 0 (its first end) to 1 [L2/d].
  double SinkDensity(int string, int segment, double position) const;
  /// Whether the bed percolates there: the head stands below the bottom of the bed.
  bool Percolates(int string, int segment, double position) const;

  // --- what each element does --------------------------------------------------------------------------
  std::vector<WellResult> Wells() const;         ///< in the model's order
  std::vector<WellResult> PartialWells() const;  ///< in the model's order; head on the screen at the radius
  std::vector<WellResult> TheisWells() const;    ///< one a label, in order of first records; rate in force
  std::vector<DiskResult> Disks() const;
  std::vector<StringResult> LineSinks() const;  ///< in the model's order
  std::vector<DomainResult> Domains() const;
  std::vector<WallResult> Walls() const;

  /// Flow across a polyline from its left to its right, looking from the first vertex to the last [L3/d].
  /// Closed form for wells, line-sinks and doublets; areas of recharge by their own edge integrals, exact to
  /// about 1e-10 of the value.  A well exactly on the line counts nothing: what it draws from both sides
  /// cancels.
  double Flux(std::span<const Complex> line) const;

  /// Errors between the control points.
  Checks Check() const;
  Balance WaterBalance() const;

 private:
  std::unique_ptr<detail::System> system_;
};

/// What can be found in a model before it is solved: degenerate, duplicate and contradictory input.
std::vector<Finding> Validate(const Model& model);

}  // namespace aem
