// The tracks of one well, in the order of their angles, with the strips between them: added to until every
// strip's volume is right, or the strip is too thin to matter.
//
// Where neighbours go different ways, at a stagnation point, around a stream's end or a wall's tip, the strip
// between them is halved until it carries less than a millionth of the well's water.  Its two tracks are then
// the dividing streamlines, to within that millionth, for as long as the water moves: they, and no chord,
// bound the zone.  No angle is ever as small as exp(-time), so that the travel time is without limit.
#pragma once

#include <atomic>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "zones/plan_field.h"
#include "zones/strip.h"
#include "zones/track.h"

namespace zones {

struct FanOptions {
  double tolerance = 2e-3;  ///< of the outline, in parts of the zone's size
  int threads = 1;
  std::vector<aem::EndlessLine> boundaries;  ///< at which the ground ends
  const std::atomic<bool>* stop = nullptr;
  /// Told the share of Build that is done, rising from 0 to 1.
  std::function<void(double)> progress;
};

/// The well of a zone.
struct Source {
  Complex at;
  double radius = 0.0;     ///< [L]
  double discharge = 0.0;  ///< above 0 [L3/d]
  std::string label;
};

class Fan {
 public:
  /// `times` ascending, above 0 [d].
  Fan(const PlanField& field, const Source& source, std::span<const double> times, const FanOptions& options);

  /// False when it was stopped.
  bool Build();
  const std::vector<Track>& tracks() const { return tracks_; }
  /// strips()[i] lies between tracks()[i] and the next one, the last between the last and the first.
  const std::vector<Strip>& strips() const { return strips_; }
  const Track& Next(std::size_t i) const { return tracks_[i + 1 == tracks_.size() ? 0 : i + 1]; }
  double rim() const { return rim_; }
  /// Strips that are neither good nor too thin to matter.
  int Unresolved() const;
  /// Flow across the whole rim over the well's discharge: 1.
  double RimFlow() const { return rim_flow_; }

 private:
  void ChooseRim();
  /// Radius of a circle with the volume of a time [L].
  double SizeAfter(double time) const;
  bool TraceAll(const std::vector<double>& angles, std::vector<Track>* tracks);
  double FlowBetween(double from, double to) const;
  void MeasureVolumes();
  void Measure(const std::vector<char>& fresh);
  StripRules Rules() const;
  bool HoldsWell(Complex a, Complex b, Complex c, Complex d) const;
  bool Add(const std::vector<std::size_t>& where);
  void TellProgress(const std::vector<std::size_t>& bad);
  double AngleAfter(std::size_t i) const;

  const PlanField& field_;
  Source source_;
  std::vector<double> times_;
  FanOptions options_;
  double rim_ = 0.0;         ///< from which paths begin [L]
  double to_centre_ = 0.0;   ///< travel time from there [d]
  double storage_ = 1.0;     ///< porosity times thickness at the well [L]
  double least_size_ = 1.0;  ///< SizeAfter the shortest time [L]
  double rim_flow_ = 0.0;
  int round_ = 0;      ///< of adding tracks
  double told_ = 0.0;  ///< of the progress
  std::vector<double> volumes_;
  std::vector<Track> tracks_;
  std::vector<Strip> strips_;
};

}  // namespace zones
