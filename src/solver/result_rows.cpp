#include "solver/result_rows.h"

#include "solver/deck_labels.h"
#include "store/database.h"

namespace ormel {
namespace {

constexpr std::size_t kFewestPoints = 2;

void SeedWells(ResultRows& rows, const SolverInput& input) {
  for (std::size_t i = 0; i < kWellKinds; ++i) {
    const auto kind = static_cast<WellKind>(i);
    if (kind == WellKind::kDisk || kind == WellKind::kHeadDisk) continue;
    const bool by_head = kind == WellKind::kHead || kind == WellKind::kPartialHead;
    const std::string* last = nullptr;
    for (const WellInput& well : input.wells[i]) {
      // Several transient records of one label are one well.
      const bool repeated = kind == WellKind::kTransient && last != nullptr && *last == well.label;
      last = &well.label;
      if (well.image || repeated) continue;
      rows.Well(well.label, VertexLabel("WL_", well.vid), well.place.on_map, by_head ? well.head : 0.0);
    }
  }
}

void SeedLinesinks(ResultRows& rows, const SolverInput& input) {
  for (const auto* group : {&input.by_discharge, &input.by_head, &input.routed})
    for (const StringInput& s : *group)
      for (std::size_t i = 1; i < s.vertices.size(); ++i)
        rows.Linesink(s.label, SegmentLabel("LS_", s.pid, s.vertices[i].seq), s.vertices[i - 1].on_map,
                      s.vertices[i].on_map,
                      group == &input.by_discharge ? kNoSpecifiedHead : s.values[i - 1]);
}

void SeedDomains(ResultRows& rows, const SolverInput& input) {
  for (const DomainInput& domain : input.domains) {
    if (domain.vertices.size() < kFewestPoints) continue;
    for (const InputVertex& vertex : domain.vertices)
      rows.Inhomogeneity(domain.label, SegmentLabel("IN_", domain.pid, vertex.seq));
  }
}

void SeedWalls(ResultRows& rows, const SolverInput& input) {
  constexpr std::int64_t kClosed = 1;
  for (const WallInput& wall : input.walls) {
    if (wall.vertices.size() < kFewestPoints) continue;
    for (const InputVertex& vertex : wall.vertices) {
      // The last vertex of an open wall begins no side.
      if (&vertex == &wall.vertices.back() && wall.closed != kClosed) continue;
      rows.Barrier(wall.label, SegmentLabel("HB_", wall.pid, vertex.seq));
    }
  }
}

}  // namespace

ResultRows::ResultRows(Database& db)
    : wells_(db, "WLResults",
             {"Label", "VadoxLabel", "X", "Y", "SpecifiedHead", "Radius", "Discharge", "Head"}),
      linesinks_(db, "LSResults",
                 {"Label", "VadoxLabel", "X1", "Y1", "X2", "Y2", "SpecifiedHead", "CalculatedHead",
                  "Discharge", "Width", "Resistance", "Depth"}),
      inhomogeneities_(db, "INResults",
                       {"Label",
                        "VadoxLabel",
                        "Conductivity",
                        "BottomElev",
                        "ExtractRate",
                        "Porosity",
                        "DomainArea",
                        "AvgPotJump",
                        "X1",
                        "Y1",
                        "XC",
                        "YC",
                        "StrPotJumpNode",
                        "ParabStrPotJump",
                        "RealStrExtrNode",
                        "ImagStrExtrNode",
                        "RealStrExtrCntr",
                        "Tfac",
                        "DeltaPNode",
                        "DeltaPCntr"}),
      barriers_(db, "NFResults",
                {"Label", "VadoxLabel", "Conductivity", "Width", "Porosity", "WallBottomElev", "X1", "Y1",
                 "XC", "YC", "StrPotJumpNode", "ParabStrPotJump", "DeltaFlowCntr", "DeltaFlowNode"}) {}

void ResultRows::Well(const std::string& label, const std::string& deck_label, MapPoint at,
                      double specified_head) {
  wells_.Row(label, deck_label, at.x, at.y, specified_head, 0.0, 0.0, 0.0);
}

void ResultRows::Linesink(const std::string& label, const std::string& deck_label, MapPoint from, MapPoint to,
                          double specified_head) {
  linesinks_.Row(label, deck_label, from.x, from.y, to.x, to.y, specified_head, 0.0, 0.0, 0.0, 0.0, 0.0);
}

void ResultRows::Inhomogeneity(const std::string& label, const std::string& deck_label) {
  inhomogeneities_.Row(label, deck_label, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0,
                       0.0, 0.0, 0.0, 0.0, 0.0);
}

void ResultRows::Barrier(const std::string& label, const std::string& deck_label) {
  barriers_.Row(label, deck_label, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
}

void SeedResultRows(Database& db, const SolverInput& input) {
  for (const char* sql : {"DELETE * FROM WLResults;", "DELETE * FROM LSResults;", "DELETE * FROM INResults;",
                          "DELETE * FROM NFResults;"})
    db.Execute(sql);
  ResultRows rows(db);
  SeedWells(rows, input);
  SeedLinesinks(rows, input);
  SeedDomains(rows, input);
  SeedWalls(rows, input);
}

}  // namespace ormel
