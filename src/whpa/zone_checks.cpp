#include "whpa/zone_checks.h"

#include <algorithm>
#include <cmath>

#include "model/geometry.h"
#include "text/masks.h"

namespace ormel {
namespace {

std::string Percent(double share) {
  return FormatMask(100.0 * share, "0.0##") + " percent";
}

/// The sums of the file agree with themselves: a damaged number shows.
bool Consistent(const WellOutlines& well, const ZoneOutline& zone) {
  const double told = zone.pores + zone.recharge + zone.surface + zone.edge + zone.left_out;
  const double pumped = well.discharge * zone.time;
  return zone.pumped > 0.0 && std::fabs(zone.pumped - pumped) <= 1e-6 * pumped &&
         std::fabs(1.0 - told / zone.pumped - zone.balance) <= 1e-6;
}

/// What is wrong with the zone by itself; empty when nothing is.
std::string FaultOf(const WellOutlines& well, const ZoneOutline& zone, const Ground& ground) {
  if (zone.rings.empty() || zone.rings.front().size() < 4) return "it has no outline.";
  if (!ground.Simple())
    return "its outline crosses itself (" + ground.WhyNotSimple() +
           ").  Outline it again with a smaller tolerance.";
  const Ring& outline = zone.rings.front();
  if (!(SignedArea<ModelPoint>(outline, outline.front()) > 0.0))
    return "its outline runs the wrong way round.";
  if (!ground.Holds(well.at)) return "its outline does not hold the well.  Look at the pathlines around it.";
  if (!Consistent(well, zone) || std::fabs(ground.Area() - zone.area) > 1e-4 * zone.area)
    return "its numbers do not agree with one another.  Outline it again.";
  // Water that was not followed has no ground within the outline.
  const double missing = std::fabs(zone.balance) + std::fabs(zone.left_out) / zone.pumped;
  if (!(missing <= kZoneError))
    return "its volume is off by " + Percent(missing) +
           " of the water that the well takes.  Outline it again with a smaller tolerance; look for elements "
           "that lie close to one another within it.";
  return {};
}

class Checker {
 public:
  explicit Checker(const std::vector<WellOutlines>& wells) : wells_(wells) {
    for (const WellOutlines& well : wells) {
      grounds_.emplace_back();
      refused_.emplace_back(well.zones.size(), false);
      for (const ZoneOutline& zone : well.zones) grounds_.back().emplace_back(zone.rings);
    }
  }

  std::vector<RefusedZone> Run() {
    for (std::size_t w = 0; w < wells_.size(); ++w) {
      const std::vector<ZoneOutline>& zones = wells_[w].zones;
      for (std::size_t z = 0; z < zones.size(); ++z) {
        std::string fault = FaultOf(wells_[w], zones[z], grounds_[w][z]);
        if (fault.empty()) fault = NestingFault(w, z);
        if (!fault.empty()) Refuse(w, z, std::move(fault));
      }
    }
    for (std::size_t w = 0; w < wells_.size(); ++w)
      for (std::size_t other = w + 1; other < wells_.size(); ++other) CheckApart(w, other);
    return std::move(result_);
  }

 private:
  void Refuse(std::size_t well, std::size_t zone, std::string reason) {
    if (refused_[well][zone]) return;
    refused_[well][zone] = true;
    result_.push_back({well, zone, std::move(reason)});
  }

  std::string NestingFault(std::size_t w, std::size_t z) const {
    for (std::size_t earlier = 0; earlier < z; ++earlier) {
      if (refused_[w][earlier]) continue;
      const double outside = grounds_[w][earlier].AreaOutside(grounds_[w][z]);
      const double part = outside / grounds_[w][earlier].Area();
      if (!(part <= kZoneError))
        return Percent(part) +
               " of the zone of a shorter time lies outside of it.  Outline it again with a smaller "
               "tolerance.";
    }
    return {};
  }

  void CheckApart(std::size_t w, std::size_t other) {
    for (std::size_t z = 0; z < wells_[w].zones.size(); ++z) {
      for (std::size_t o = 0; o < wells_[other].zones.size(); ++o) {
        const ZoneOutline &a = wells_[w].zones[z], &b = wells_[other].zones[o];
        if (a.time != b.time || refused_[w][z] || refused_[other][o]) continue;
        const double smaller = std::min(a.area, b.area);
        const double common = grounds_[w][z].AreaCommon(grounds_[other][o]);
        // Beneath a stream the deep water may be one well's and the upper the other's.
        const double allowed = kZoneError * smaller + std::max(a.shared, b.shared);
        if (common <= allowed) continue;
        const std::string reason = "it shares " + Percent(common / smaller) +
                                   " of its ground with the zone of another well.  Outline both again with a "
                                   "smaller tolerance.";
        Refuse(w, z, reason);
        Refuse(other, o, reason);
      }
    }
  }

  const std::vector<WellOutlines>& wells_;
  std::vector<std::vector<Ground>> grounds_;
  std::vector<std::vector<char>> refused_;
  std::vector<RefusedZone> result_;
};

}  // namespace

std::vector<RefusedZone> CheckZones(const std::vector<WellOutlines>& wells) {
  return Checker(wells).Run();
}

}  // namespace ormel
