// Overlapping and degenerate points.
#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

#include "core/command.h"
#include "core/ormel.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "model/selection.h"
#include "model/validity.h"
#include "model/vertices.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/files.h"
#include "text/numbers.h"

namespace ormel {
namespace {

constexpr double kNearFraction = 0.1;  ///< of the mean step between neighbours

void ReportMove(const std::string& report, MapPoint from, MapPoint to) {
  if (report.empty() || from == to) return;
  std::ofstream file(report, std::ios::app | std::ios::binary);
  file << MovedPointText(from, to) << "\r\n";
  if (!file.flush())
    throw FileError(report, "the moved point could not be noted: the file cannot be written");
}

double Distance(MapPoint a, MapPoint b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

std::int64_t CellHash(double column, double row) {
  // Far apart cells may share a number: Taken() looks at the points themselves.
  const auto wrap = [](double v) { return static_cast<std::int64_t>(std::fmod(v, 1e9)); };
  return wrap(column) * 1000003 + wrap(row);
}

bool Overlaps(MapPoint a, MapPoint b, double tolerance) {
  return a.x < b.x + tolerance && a.x > b.x - tolerance && a.y < b.y + tolerance && a.y > b.y - tolerance;
}

/// One point left of a string: says so and removes vertex and polygon.
void RemovePhantom(Ormel& ormel, Pid pid, const char* text) {
  Inform(ormel, "Warning", text, Icon::kWarning);
  DeletePolygon(ormel, pid);
}

}  // namespace

std::string MovedPointText(MapPoint from, MapPoint to) {
  return "X:\t" + NumberText(from.x) + "\tY:\t" + NumberText(from.y) + "\t | X:\t" + NumberText(to.x) +
         "\tY:\t" + NumberText(to.y);
}

double DefaultVertexTolerance(const Ormel& ormel) {
  return (ormel.window.full.x_max - ormel.window.full.x_min) * 1e-5;
}

bool IsSegment(const Ormel& ormel, MapPoint from, MapPoint to, MapPoint a, MapPoint b) {
  // Results have the digits of the solver's files.
  const double near = std::max({ormel.gui.VertexTolerance, DefaultVertexTolerance(ormel),
                                1e-7 * std::max(std::abs(to.x), std::abs(to.y))});
  return (Distance(from, a) <= near && Distance(to, b) <= near) ||
         (Distance(from, b) <= near && Distance(to, a) <= near);
}

MapPoint ElemCheckVertices(Ormel& ormel, MapPoint at, const std::string& report) {
  const Named named(ormel, "ElemCheckVertices");
  const double tolerance = ormel.gui.VertexTolerance;
  const MapPoint first = at;
  RowReader taken(ormel.db(), "select x,y from vertices where X < ? and X > ? and Y < ? and Y > ?",
                  {at.x + tolerance, at.x - tolerance, at.y + tolerance, at.y - tolerance});
  while (taken.Next()) {
    at = {at.x + tolerance, at.y + tolerance};
    taken.Restart({at.x + tolerance, at.x - tolerance, at.y + tolerance, at.y - tolerance});
  }
  ReportMove(report, first, at);
  return at;
}

FreePlaces::FreePlaces(Ormel& ormel) : tolerance_(ormel.gui.VertexTolerance) {
  RowReader vertices(ormel.db(), "select X,Y from Vertices");
  while (vertices.Next()) Add({vertices.Double(0), vertices.Double(1)});
}

void FreePlaces::Add(MapPoint at) {
  if (tolerance_ > 0.0)
    cells_[CellHash(std::floor(at.x / tolerance_), std::floor(at.y / tolerance_))].push_back(at);
}

bool FreePlaces::Taken(MapPoint at) const {
  if (!(tolerance_ > 0.0)) return false;
  const double column = std::floor(at.x / tolerance_), row = std::floor(at.y / tolerance_);
  constexpr std::array kAround{-1.0, 0.0, 1.0};
  for (const double across : kAround) {
    for (const double up : kAround) {
      const auto cell = cells_.find(CellHash(column + across, row + up));
      if (cell == cells_.end()) continue;
      for (const MapPoint other : cell->second)
        if (Overlaps(other, at, tolerance_)) return true;
    }
  }
  return false;
}

MapPoint FreePlaces::Find(MapPoint at, const std::string& report) {
  const MapPoint first = at;
  while (Taken(at)) at = {at.x + tolerance_, at.y + tolerance_};
  Add(at);
  ReportMove(report, first, at);
  return at;
}

void ElemCheckPolyVertices(Ormel& ormel, Pid pid) {
  const Named named(ormel, "ElemCheckPolyVertices");
  const std::vector<VertexRow> rows = VerticesOf(ormel, pid);
  if (rows.size() < 2) return;
  double sum = 0.0;
  for (std::size_t i = 1; i < rows.size(); ++i) sum += Distance(rows[i - 1].at, rows[i].at);
  const double limit = kNearFraction * sum / static_cast<double>(rows.size() - 1);

  // The total is never reset: only points near the start can be too close.
  MapPoint previous = rows.front().at;
  double total = 0.0;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    total += Distance(previous, rows[i].at);
    if (total < limit) {
      ormel.ui().Ask(Box{kProgramTitle, "Found a vertex which is too close to another vertex. Removing...",
                         Buttons::kOkCancel, Icon::kNone});
      DeleteVertex(ormel, rows[i].vid);
    } else {
      previous = rows[i].at;
    }
  }
}

bool ElemCheckPhantomLinesinkVertices(Ormel& ormel, Pid pid) {
  const Named named(ormel, "ElemCheckPhantomLinesinkVertices");
  ElemCheckPolyVertices(ormel, pid);
  if (VerticesOf(ormel, pid).size() != 1) return false;
  RemovePhantom(ormel, pid,
                "The currently selected linesink string has only one point.  The string will be deleted.");
  ormel.db().Execute("delete from LinesinkStrings where PID=?", {pid});
  ClearSelection(ormel);
  return true;
}

bool ElemCheckPhantomNoFlowVertices(Ormel& ormel, Pid pid) {
  const Named named(ormel, "ElemCheckPhantomNoFlowVertices");
  ElemCheckPolyVertices(ormel, pid);
  if (VerticesOf(ormel, pid).size() != 1) return false;
  RemovePhantom(ormel, pid,
                "The currently selected no-flow boundary has only one point.  The string will be deleted.");
  ClearSelection(ormel);
  InvalidateSolution(ormel, false, false);
  return true;
}

}  // namespace ormel
