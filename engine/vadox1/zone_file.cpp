#include "vadox1/zone_file.h"

#include <fmt/format.h>

#include <iterator>

namespace vadox1 {
namespace {

void AppendRing(std::string& text, const std::vector<aem::Complex>& ring) {
  fmt::format_to(std::back_inserter(text), "RING {}\r\n", ring.size());
  for (const aem::Complex& at : ring)
    fmt::format_to(std::back_inserter(text), "{:.15g} {:.15g}\r\n", at.real(), at.imag());
}

void AppendZone(std::string& text, const zones::Zone& zone) {
  const zones::Ledger& supply = zone.supply;
  text += "ZONE";
  for (const double value : {zone.time, zone.area, zone.pumped, supply.pores, supply.recharge, supply.surface,
                             supply.edge, supply.left_out, supply.shared, zone.balance})
    fmt::format_to(std::back_inserter(text), " {:.10g}", value);
  text += "\r\n";
  AppendRing(text, zone.ring);
  for (const std::vector<aem::Complex>& hole : zone.holes) AppendRing(text, hole);
}

}  // namespace

std::string ZonesText(std::span<const zones::WellZones> wells, double tolerance) {
  std::string text =
      fmt::format("* {} wells outlined to {:.6g} of the size of each zone\r\n", wells.size(), tolerance);
  for (const zones::WellZones& well : wells) {
    const zones::Source& source = well.source;
    fmt::format_to(std::back_inserter(text), "WELL {:.12g} {:.12g} {:.10g} {}\r\n", source.at.real(),
                   source.at.imag(), source.discharge, source.label);
    for (const auto& [end, count] : well.ends)
      fmt::format_to(std::back_inserter(text), "ENDS {} {}\r\n", count, aem::PathEndName(end));
    for (const zones::Zone& zone : well.zones) AppendZone(text, zone);
    if (!well.failure.empty()) text += "REFUSED " + well.failure + "\r\n";
  }
  text += "DONE\r\n";
  return text;
}

}  // namespace vadox1
