// The command "Outline Capture Zone...": capture zone polygons from the solved model.
#pragma once

#include <string>
#include <vector>

#include "core/form.h"

namespace ormel {

inline constexpr double kDaysPerYear = 365.0;

/// A well of the solved model that takes water, by its discharge in the results.
struct CaptureWell {
  std::string label;
  Vid vid = -1;
  MapPoint at;
  double radius = 0.0;     ///< [computation length]
  double discharge = 0.0;  ///< [L3/d]
};

/// Pumping wells of the last solve, by label; images and ponds left out.
std::vector<CaptureWell> CaptureWells(Ormel& ormel);

struct OutlineRequest {
  std::vector<CaptureWell> wells;
  std::vector<double> years{2, 5, 10};
  double tolerance = 0.002;  ///< in parts of a zone's size
};

class TextSink;
struct WellOutlines;
struct ZoneOwner;

/// The block `zones` of a deck: outlines go into <stem>.ZNS.  Ground ends at `boundary` when it has two
/// points.
void WriteZonesBlock(const Ormel& ormel, TextSink& deck, const std::string& stem,
                     const OutlineRequest& request, const std::vector<MapPoint>& boundary = {});
/// Stores the outlines that pass their checks, called after the owners, which are in the order of the
/// request's wells, and tells the user of the rest.  Gives the number stored.
int StoreOutlines(Ormel& ormel, const OutlineRequest& request, const std::vector<ZoneOwner>& owners,
                  const std::vector<WellOutlines>& wells);

/// Has the solver outline the zones, in one start of it, checks and stores one polygon a well and time with
/// the label "<well> <n> years"; one of the same label is replaced.  Gives the number stored.  A zone that
/// fails a check is not stored, and the user is told which check it was.  Cancelled, nothing is stored.
int OutlineCaptureZones(Ormel& ormel, const OutlineRequest& request);

/// "Outline Capture Zone": the wells, times and tolerance.
class OutlineCaptureZoneForm : public Form {
 public:
  OutlineCaptureZoneForm(Ormel& ormel, std::vector<CaptureWell> wells);
  std::string Title() const override { return "Outline Capture Zone"; }
  std::string_view Name() const override { return "OutlineCaptureZone"; }
  std::span<const ControlSpec> Controls() const override;
  OutlineRequest Request() const;

 protected:
  void Pressed(std::string_view name) override;

 private:
  std::vector<double> Years() const;
  bool Check();
  std::vector<CaptureWell> wells_;
};

/// The menu command: form, traces, redraw.
void OutlineCaptureZone(Ormel& ormel);

}  // namespace ormel
