// The zones command: outlines of time-related capture zones into their file.

#include <fmt/format.h>

#include <exception>

#include "files/output_file.h"
#include "vadox1/run.h"
#include "vadox1/session.h"
#include "vadox1/zone_file.h"
#include "zones/plan_field.h"
#include "zones/zone.h"

namespace vadox1 {
namespace {

constexpr double kDefaultTolerance = 0.002;

}  // namespace

void Session::Do(const ZonesCommand& command) {
  Solved().PrepareManyPoints();
  const aem::SolutionField field(Solved());
  const zones::PlanField plan(field, time_);
  std::vector<zones::Source> sources;
  for (const ZoneWell& asked : command.wells) {
    const aem::TraceWell* well = WellAt(field.Wells().wells(), asked.at);
    const bool takes = well != nullptr && well->discharge > 0.0;
    if (takes) {
      sources.push_back({well->at, well->radius, well->discharge, well->label});
      continue;
    }
    logs_.Report({aem::Severity::kWarning, well != nullptr ? well->label : "", asked.line,
                  well == nullptr ? fmt::format("No well stands at {:.8g}, {:.8g}: it has no capture zone.",
                                                asked.at.real(), asked.at.imag())
                                  : std::string("The well takes no water: it has no capture zone.")},
                 true);
  }
  zones::ZoneOptions options;
  options.tolerance = command.tolerance.value_or(kDefaultTolerance);
  options.stop = &interrupted;
  for (const BoundaryLine& line : command.boundaries) options.boundaries.push_back({line.from, line.to});
  const std::string text = fmt::format("Capture zones of {} wells", sources.size());
  Progress(0.0, text);
  std::exception_ptr stopped;
  const std::vector<zones::WellZones> outlined =
      zones::OutlineZones(plan, sources, command.times, options, [&](double share) {
        try {
          Progress(share, text);
        } catch (...) {
          stopped = std::current_exception();
        }
        return stopped == nullptr;
      });
  if (stopped) std::rethrow_exception(stopped);
  if (interrupted.load()) throw Interrupted();
  files::WriteWholeFile(command.file, ZonesText(outlined, options.tolerance));
  logs_.Message(fmt::format("Capture zones of {} wells written into {}", outlined.size(), command.file));
}

}  // namespace vadox1
