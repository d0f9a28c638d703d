#include "exchange/result_sources.h"

#include "core/ormel.h"
#include "solver/user_labels.h"
#include "text/files.h"

namespace ormel {
namespace {

void RefuseDamaged(Ormel& ormel, const std::string& file, bool read) {
  for (const std::string& fault : ResultFilesOf(ormel).faults())
    if (fault.starts_with(file)) throw FileError(file, "is damaged and was not exported: " + fault);
  if (!read) throw FileError(file, "cannot be read; solve the model again");
}

}  // namespace

std::shared_ptr<const ContourSet> WholeContours(Ormel& ormel, const std::string& file) {
  auto set = ResultFilesOf(ormel).Contours(ormel, file);
  RefuseDamaged(ormel, file, set != nullptr);
  return set;
}

std::shared_ptr<const PathSet> WholePaths(Ormel& ormel, const std::string& file) {
  auto set = ResultFilesOf(ormel).Paths(ormel, file);
  RefuseDamaged(ormel, file, set != nullptr);
  return set;
}

std::string PathLabels::Of(const std::string& start) {
  constexpr std::string_view kWell = " well ";
  const std::size_t at = start.find(kWell);
  if (at == std::string::npos) return "Particle " + std::to_string(++particles_);
  const std::size_t from = at + kWell.size();
  const std::string deck = start.substr(from, start.find_first_of(", ", from) - from);
  const auto [entry, added] = labels_.try_emplace(deck);
  if (added) entry->second = UserLabel(ormel_, deck);
  return entry->second;
}

}  // namespace ormel
