// A path of the water to a well, as an outline needs it: where it is at any time, and what it passes.
#pragma once

#include <string>
#include <vector>

#include "aem/trace.h"

namespace zones {

using aem::Complex;

/// A place of a track.
struct Mark {
  Complex at;
  double time = 0.0;          ///< of travel to the well [d]
  Complex direction{};        ///< of the track, away from the well; at most 1 long
  double slowness = 0.0;      ///< time per length of way [d/L]
  double storage = 0.0;       ///< porosity times saturated thickness [L]
  double infiltration = 0.0;  ///< into the aquifer [L/d]
  /// Flow of a stream tube here over that at the well, as far as line-sinks changed it.
  double passed = 1.0;
};

/// Area between the chord from `a` to `b` and the track, positive where the track runs to the right of the
/// chord [L2].
double BesideChord(const Mark& a, const Mark& b);

/// A track that was traced backward from a well.  Between the marks the tracer left, place and time are
/// cubics of the way, as the tracer's own steps are to their fourth order.
class Track {
 public:
  /// Times of the path are those of travel to the well's centre.
  Track(const aem::Path& path, double angle);

  double angle() const { return angle_; }
  /// Own marks, times ascending.
  const std::vector<Mark>& marks() const { return marks_; }
  /// Where it is at a time; at its end when it ended before.  `hint` is where the search begins and is left
  /// at the place found.
  Mark At(double time, std::size_t* hint) const;
  /// The same, but where a line is passed at that time the near side of it: At tells what lies behind.
  Mark Before(double time, std::size_t* hint) const;
  /// Ended before the longest time, at something.
  bool ended() const { return ended_; }
  /// Stands still: its end is not the end of its water.
  bool still() const { return end_ == aem::PathEnd::kStagnation; }
  aem::PathEnd end() const { return end_; }
  const std::string& end_label() const { return end_label_; }
  double end_time() const { return marks_.back().time; }
  /// Whether the tip at a time is on its way, and so on the line of equal times.
  bool MovesAt(double time) const { return !still() && end_time() >= time * (1.0 - 1e-9); }
  /// The places of the track between two times, both included, so close together that the line through them
  /// is off by `sagitta` at most [L].
  std::vector<Complex> Line(double from, double to, double sagitta) const;

 private:
  Mark Between(std::size_t i, double time) const;

  double angle_ = 0.0;
  std::vector<Mark> marks_;
  std::vector<double> ways_;  ///< from each mark to the next [L]
  bool ended_ = false;
  aem::PathEnd end_ = aem::PathEnd::kTime;
  std::string end_label_;
};

}  // namespace zones
