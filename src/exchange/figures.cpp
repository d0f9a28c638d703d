#include "exchange/figures.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "core/ormel.h"
#include "document/element_rows.h"
#include "exchange/result_sources.h"
#include "solver/pathline_tics.h"
#include "solver/result_files.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {
namespace {

/// Marks of one export; a spacing that gives more is a slip.
constexpr std::size_t kMostExportedTics = 2'000'000;

struct ElementSource {
  Source source;
  Element element;
  const char* table;
};
constexpr std::array kElementSources{
    ElementSource{Source::kZones, Element::kCapzone, "Capzones"},
    ElementSource{Source::kWells, Element::kWell, "Wells"},
    ElementSource{Source::kTestPoints, Element::kTestPoint, "TestPoints"},
    ElementSource{Source::kParticles, Element::kParticle, "Particles"},
    ElementSource{Source::kDomains, Element::kInhomogeneity, "Inhomogeneities"},
    ElementSource{Source::kLinesinks, Element::kLinesink, "LinesinkStrings"},
    ElementSource{Source::kBarriers, Element::kBarrier, "NoFlowStrings"}};

const ElementSource* ElementsOf(Source source) {
  for (const ElementSource& row : kElementSources)
    if (row.source == source) return &row;
  return nullptr;
}

std::string ResultFile(const Ormel& ormel, Source source) {
  return ResultFileName(ormel, ormel.project.OrmelBaseName, source == Source::kContours ? ".CTR" : ".PTH");
}

std::shared_ptr<const ContourSet> Contours(Ormel& ormel) {
  return WholeContours(ormel, ResultFile(ormel, Source::kContours));
}

std::shared_ptr<const PathSet> Paths(Ormel& ormel) {
  return WholePaths(ormel, ResultFile(ormel, Source::kPaths));
}

using Receive = std::function<void(const Figure&)>;

void ReadContourFigures(Ormel& ormel, const Receive& receive) {
  const auto set = Contours(ormel);
  Figure figure;
  for (const ContourSet::Line& line : set->lines) {
    figure.points = std::span(set->points).subspan(line.first, line.count);
    figure.value = line.level;
    receive(figure);
  }
}

void ReadPathFigures(Ormel& ormel, const Receive& receive) {
  const auto set = Paths(ormel);
  PathLabels labels(ormel);
  Figure figure;
  for (std::size_t i = 0; i < set->paths.size(); ++i) {
    figure.points = std::span(set->points).subspan(set->paths[i].first, set->paths[i].count);
    figure.label = labels.Of(set->starts[i]);
    receive(figure);
  }
}

void ReadTicFigures(Ormel& ormel, Source source, const TicSpacings& spacings, const Receive& receive) {
  const auto set = Paths(ormel);
  const bool times = source == Source::kTimeTics;
  const double spacing = times ? spacings.days : spacings.elevation;
  const std::vector<Tic> tics = times ? TimeTics(*set, spacing, nullptr, kMostExportedTics)
                                      : ElevationTics(*set, spacing, nullptr, kMostExportedTics);
  if (tics.size() >= kMostExportedTics)
    throw FileError(ResultFile(ormel, source), "has more than " + std::to_string(kMostExportedTics) +
                                                   " marks at a spacing of " + NumberText(spacing) +
                                                   "; take a larger one");
  Figure figure;
  for (const Tic& tic : tics) {
    figure.points = std::span(&tic.at, 1);
    figure.value = static_cast<double>(tic.multiple) * spacing;
    figure.up = tic.up;
    receive(figure);
  }
}

void ReadElementFigures(Ormel& ormel, Element element, const Receive& receive) {
  Figure figure;
  ReadElementRows(ormel, element, [&](const ElementRow& row) {
    figure.points = row.points;
    figure.closed = row.closed;
    figure.label = row.label;
    figure.value = row.value;
    figure.head_specified = row.head_specified;
    figure.drain = row.drain;
    receive(figure);
  });
}

}  // namespace

TicSpacings MapTicSpacings(const Ormel& ormel) {
  return {ormel.solution.TimeTicSpacing, ormel.solution.ElevationTicSpacing};
}

bool HasAny(Ormel& ormel, Source source) {
  if (const ElementSource* elements = ElementsOf(source)) return ormel.db().RowCount(elements->table) > 0;
  return ormel.solution.ValidSolution && FileExists(ResultFile(ormel, source));
}

std::size_t PointsToCome(Ormel& ormel, Source source) {
  if (source == Source::kContours) return Contours(ormel)->points.size();
  if (source == Source::kPaths) return Paths(ormel)->points.size();
  const ElementSource* elements = ElementsOf(source);
  return elements == nullptr ? 0 : static_cast<std::size_t>(ormel.db().RowCount(elements->table));
}

void ReadFigures(Ormel& ormel, Source source, const TicSpacings& spacings, const Receive& figure) {
  if (const ElementSource* elements = ElementsOf(source))
    return ReadElementFigures(ormel, elements->element, figure);
  if (source == Source::kContours) return ReadContourFigures(ormel, figure);
  if (source == Source::kPaths) return ReadPathFigures(ormel, figure);
  ReadTicFigures(ormel, source, spacings, figure);
}

}  // namespace ormel
