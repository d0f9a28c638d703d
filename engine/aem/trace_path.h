// One particle on its way: the state of a path and the rules by which it goes on and ends.  Internal to the
// tracer; how it steps is in trace_path.cpp, how it starts in trace_start.cpp, what lines do to it in
// trace_lines.cpp.
#pragma once

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include "aem/trace_events.h"
#include "aem/trace_step.h"

namespace aem::detail {

// Parts of the longest step.
inline constexpr double kNudge = 1e-6;  ///< off a line, so that the side is certain
/// Off a line-sink on which a path starts: beyond what its ends do to the flow.
inline constexpr double kBeside = 1e-4;
inline constexpr double kTiny = 1e-7;  ///< a length that no map and no error bound can show
inline constexpr double kFarthest =
    1e3;  ///< way of the first tried step: where the water stands, way is but time
inline constexpr double kSlide = 0.1;  ///< along a wall at once
/// The longest travel time at this speed moves a particle by a billionth of a step: it stands still.
inline constexpr double kStill = 1e-9;
/// The longest travel time at this speed moves it by a thousandth of a step: see Mover.
inline constexpr double kSlow = 1e-3;

inline bool Stopped(const std::atomic<bool>* flag) {
  return flag != nullptr && flag->load(std::memory_order_relaxed);
}

/// One path from its start to its end.
class PathTracer {
 public:
  PathTracer(const TraceField& field, const PathStart& start, const TraceOptions& options,
             const std::atomic<bool>* stop)
      : field_(field),
        options_(options),
        stop_(stop),
        mover_(field, start.forward, kSlow * options.step / options.longest_time),
        tolerance_{options.tolerance * options.step, 0.1 * options.tolerance} {
    path_.start = start;
  }

  Path Run() {
    Begin();
    while (!ended_) {
      if (Stopped(stop_) || Stopped(options_.stop)) break;
      if (Stuck()) {
        End(PathEnd::kStagnation);
      } else {
        Advance();
      }
    }
    return std::move(path_);
  }

 private:
  void Begin();
  bool BeginsInWell();
  bool BeginsOnLineSink();
  void LeaveTip();
  bool Stuck();
  void Advance();
  bool StandsStill() const;
  /// Short steps are taken where the flow diverges, at a well's rim first of all, and their errors grow with
  /// it.
  Tolerance ToleranceOf(double way) const {
    return {tolerance_.position * std::min(1.0, 10.0 * way / options_.step), tolerance_.height};
  }
  void Accept(const Place& end, const Motion& motion);
  void ComeToTime(const Trial& trial, double way);
  void FieldEnds(const Trial& trial, double way);
  Event EventOf(const Trial& trial) const;
  Event Meets(const Place& from, const Place& to) const {
    const double direction = mover_.direction();
    return FirstEvent(field_, options_, {direction, direction * motion_.state.net_recharge > 0.0}, from, to);
  }
  Event EventOnTangent(double way) const { return Meets(place_, motion_.Move(place_, way)); }
  void Meet(const Event& event, double way);
  void Arrive(const Event& event, const Motion& motion, double way);
  void CrossRim(const TraceWell& disk);
  void CrossLine(const Crossing& crossing, const Motion& motion);
  bool TakenBy(const Crossing& crossing, const Motion& near_side, Complex normal);
  const std::string& LineSinkLabel(const Crossing& crossing) const;
  bool CrossedInVain(const Crossing& crossing);
  Motion MeanAlong(Complex tangent, double way) const;
  void Slide(const Segment& line, Complex normal);

  double Remaining() const { return options_.longest_time - place_.time; }
  static PathFlow FlowOf(const PointState& state);
  void AddPoint(const PointState& state);
  /// The line at the last point has been passed: what flows on this side.
  void TellBehind() {
    if (motion_.ok) path_.points.back().behind = FlowOf(motion_.state);
  }
  void AddPointHere();
  void End(PathEnd end, std::string label = {}) {
    ended_ = true;
    path_.end = end;
    path_.label = std::move(label);
  }
  void EndAtTop();
  /// Where there is a head but no usable flow, in the middle of a singular point, the water goes nowhere.
  void EndWithoutField(PointStatus status) {
    switch (status) {
      case PointStatus::kOk:
        return End(PathEnd::kStagnation);
      case PointStatus::kDry:
        return End(PathEnd::kDry);
      case PointStatus::kIgnored:
        return End(PathEnd::kIgnored);
    }
  }

  const TraceField& field_;
  const TraceOptions& options_;
  const std::atomic<bool>* stop_;
  Mover mover_;
  Tolerance tolerance_;
  Path path_;
  bool ended_ = false;

  Place place_;
  Motion motion_;      ///< at place_
  double next_ = 0.0;  ///< way of the next tried step [L]

  Crossing last_crossing_;
  Complex last_crossed_at_;
  int crossed_again_ = 0;

  long long calls_ = 0;  ///< of Advance
  Place mark_;           ///< where the particle was at the last look of Stuck
};

}  // namespace aem::detail
