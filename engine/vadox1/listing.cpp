#include "vadox1/listing.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace vadox1 {
namespace {

constexpr const char* kEnd = "\r\n";

void Line(std::string& text, const std::string& line) {
  text += line + kEnd;
}

std::string Named(const aem::WorstError& worst) {
  if (worst.label.empty()) return fmt::format("{:.3E}", worst.value);
  return fmt::format("{:.3E} at {}", worst.value, worst.label);
}

void Contents(std::string& text, const aem::Model& model) {
  std::size_t segments = 0, domain_vertices = 0, wall_vertices = 0;
  for (const aem::LineSinkString& string : model.line_sinks) segments += string.segments.size();
  for (const aem::Domain& domain : model.domains) domain_vertices += domain.ring.size();
  for (const aem::Wall& wall : model.walls) wall_vertices += wall.points.size();
  const struct {
    const char* what;
    std::size_t count;
  } rows[] = {{"wells", model.wells.size()},
              {"partially penetrating wells", model.partial_wells.size()},
              {"transient well records", model.theis.size()},
              {"sink disks", model.disks.size()},
              {"line-sink strings", model.line_sinks.size()},
              {"line-sink segments", segments},
              {"domains", model.domains.size()},
              {"vertices of domains", domain_vertices},
              {"walls", model.walls.size()},
              {"vertices of walls", wall_vertices}};
  Line(text, "Elements");
  for (const auto& row : rows) {
    if (row.count > 0) Line(text, fmt::format("  {:<32}{:>10}", row.what, row.count));
  }
}

void AquiferLines(std::string& text, const aem::Aquifer& aquifer) {
  const struct {
    const char* what;
    double value;
  } rows[] = {{"base", aquifer.base},
              {"thickness", aquifer.thickness},
              {"hydraulic conductivity", aquifer.conductivity},
              {"porosity", aquifer.porosity},
              {"uniform flow, x", aquifer.uniform_flow.real()},
              {"uniform flow, y", aquifer.uniform_flow.imag()}};
  Line(text, "Aquifer");
  for (const auto& row : rows) Line(text, fmt::format("  {:<32}{:>18.9G}", row.what, row.value));
  if (aquifer.has_reference) {
    Line(text, fmt::format("  reference head {:.9G} at {:.9G}, {:.9G}", aquifer.reference_head,
                           aquifer.reference_point.real(), aquifer.reference_point.imag()));
  }
}

void BalanceLines(std::string& text, const aem::Balance& balance) {
  const struct {
    const char* what;
    double value;
  } rows[] = {{"wells", balance.wells},
              {"partially penetrating wells", balance.partial_wells},
              {"transient wells", balance.theis_wells},
              {"sink disks", balance.disks},
              {"line-sinks of given discharge", balance.line_sinks_discharge},
              {"line-sinks of given head", balance.line_sinks_head},
              {"drains", balance.drains},
              {"routed streams", balance.streams},
              {"recharge of domains", balance.recharge},
              {"from or to infinity", balance.infinity}};
  Line(text, "Water balance of the whole model, positive where water leaves the aquifer [volume per day]");
  for (const auto& row : rows) Line(text, fmt::format("  {:<32}{:>18.9E}", row.what, row.value + 0.0));
  Line(text, fmt::format("  {:<32}{:>18.9E}", "sum (error of the balance)", balance.error + 0.0));
  Line(text, fmt::format("  {:<32}{:>18.9E}", "throughflow", balance.throughflow + 0.0));
  if (balance.throughflow > 0.0) {
    Line(text,
         fmt::format("  {:<32}{:>18.2E}", "error over throughflow", balance.error / balance.throughflow));
  }
}

}  // namespace

std::string ChecksText(const aem::Checks& checks) {
  std::string text;
  Line(text, "Largest errors between the control points");
  Line(text, fmt::format("  head along line-sinks without resistance  {}", Named(checks.line_sink_head)));
  Line(text, fmt::format("  jump of head across domain edges          {}", Named(checks.domain_head_jump)));
  Line(text, fmt::format("  leakage of walls, beyond what they let by  {}", Named(checks.wall_leakage)));
  Line(text, fmt::format("  for comparison: range of heads {:.6G}, undisturbed flow per length {:.6G}",
                         checks.head_range, checks.undisturbed_flow));
  return text;
}

std::vector<aem::Finding> ChecksFindings(const aem::Checks& checks) {
  constexpr double kShare = 0.01;
  constexpr double kNothing = 1e-6;  // below it an error is rounding, however small what it is measured by
  const struct {
    const aem::WorstError& worst;
    double measure;
    const char* what;
    const char* of;
    const char* remedy;
    const aem::WorstError& mean;  ///< beside which `fails` of the measure makes the solution worthless
    double fails;
  } rows[] = {
      {checks.line_sink_head, checks.head_range,
       "The head along this line-sink is off by up to {:.3G}, which is {:.2G} percent of the range of {}. {}",
       "heads in the model", "Give the string more vertices there, and one head where strings meet.",
       checks.line_sink_mean, aem::kFailedHead * checks.head_range},
      {checks.domain_head_jump, checks.head_range,
       "The heads on both sides of this domain's edge differ by up to {:.3G}, which is {:.2G} percent of the "
       "range of {}. {}",
       "heads in the model", "Give its ring more vertices where it bends or comes near to another element.",
       checks.domain_mean, aem::kFailedHead * checks.head_range},
      {checks.wall_leakage, checks.undisturbed_flow,
       "This wall lets up to {:.3G} per length through beyond what it should, which is {:.2G} percent of {}. "
       "{}",
       "the flow without it", "Give it more vertices where it bends or comes near to another element.",
       checks.wall_mean, aem::kFailedLeakage}};
  std::vector<aem::Finding> findings;
  for (const auto& row : rows) {
    if (row.worst.value <= std::max(kShare * row.measure, kNothing)) continue;
    const double percent = 100.0 * row.worst.value / std::max(row.measure, 1e-300);
    findings.push_back(
        {aem::Severity::kWarning, row.worst.label, 0,
         fmt::format(fmt::runtime(row.what), row.worst.value, percent, row.of, row.remedy) +
             fmt::format(" The place is {:.8g}, {:.8g}.", row.worst.at.real(), row.worst.at.imag())});
  }
  for (const auto& row : rows) {
    if (row.mean.value <= std::max(row.fails, kNothing)) continue;
    findings.push_back(
        {aem::Severity::kFatal, row.mean.label, 0,
         fmt::format("The solution has failed: its conditions do not hold along this element near {:.8g}, "
                     "{:.8g}, and no result can be trusted. {}",
                     row.mean.at.real(), row.mean.at.imag(), row.remedy)});
  }
  return findings;
}

std::string ListingText(const aem::Solution& solution, const aem::Checks& checks, const MapOrigin& origin) {
  const aem::Model& model = solution.GetModel();
  std::string text;
  Line(text, "Listing of " + model.title);
  Line(text, fmt::format("  map origin {:.12G}, {:.12G}; units code {}", origin.x, origin.y, origin.units));
  Line(text, fmt::format("  time {:.10G} days; {} unknowns", solution.Time(), solution.Unknowns()));
  Line(text, "");
  AquiferLines(text, model.aquifer);
  Line(text, "");
  Contents(text, model);
  Line(text, "");
  text += ChecksText(checks);
  Line(text, "");
  BalanceLines(text, solution.WaterBalance());
  return text;
}

}  // namespace vadox1
