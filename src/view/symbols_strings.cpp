#include <bit>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/command.h"
#include "core/layers.h"
#include "core/ormel.h"
#include "document/vertex_chains.h"
#include "store/bulk.h"
#include "store/database.h"
#include "view/styles.h"
#include "view/symbols.h"
#include "view/vg_gdi.h"

namespace ormel {
namespace {

Color VertexColor(DrawMode mode) {
  return mode == DrawMode::kErase ? kMapBackground : StyleOf(StyleId::kVertex).color;
}

void DrawRing(const MapCanvas& canvas, std::span<const MapPoint> points, double width, Color color) {
  canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, width, color);
  if (points.size() > 2) canvas.vg.vgGDILine(points.back(), points.front(), PenStyle::kSolid, width, color);
}

StyleId LinesinkStyle(bool head_specified, bool drain, bool far_field) {
  if (!head_specified) return StyleId::kLinesinkDischarge;
  if (drain) return StyleId::kDrain;
  return far_field ? StyleId::kLinesinkFarField : StyleId::kLinesinkHead;
}

void DrawLinesink(const MapCanvas& canvas, std::span<const MapPoint> points, StyleId kind, DrawMode mode) {
  const Style& style = StyleOf(kind);
  const double shadow = canvas.ormel.gui.LinesinkShadow;
  if (shadow > 0.0)
    canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, shadow, StyleOf(StyleId::kLinesinkShadow).color);
  canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, style.width, ColorOfMode(mode, style.color));
  const bool marked = mode != DrawMode::kNormal || canvas.ormel.layers.On(Layer::kLinesinkVertices);
  if (marked) MarkVertices(canvas, points, VertexColor(mode), 1.0);
}

void DrawBarrier(const MapCanvas& canvas, std::span<const MapPoint> points, bool closed, Color color,
                 DrawMode mode) {
  const Color shown = ColorOfMode(mode, color);
  if (closed)
    DrawRing(canvas, points, StyleOf(StyleId::kBarrier).width, shown);
  else
    canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, StyleOf(StyleId::kBarrier).width, shown);
}

struct PlaceHash {
  std::size_t operator()(const MapPoint& p) const {
    const std::uint64_t x = std::bit_cast<std::uint64_t>(p.x), y = std::bit_cast<std::uint64_t>(p.y);
    return static_cast<std::size_t>((x * 0x9E3779B97F4A7C15U) ^ (y + (x >> 29U)));
  }
};

/// Which domains have a corner in common with another one.  Such corners are copied, and so equal to the last
/// digit.
std::unordered_set<Pid> DomainsWithSharedCorner(const VertexChains& chains) {
  std::unordered_map<MapPoint, Pid, PlaceHash> owner;
  std::unordered_set<Pid> shared;
  for (const VertexChains::Chain& chain : chains.chains())
    for (const MapPoint& point : chains.Points(chain)) {
      const auto [it, fresh] = owner.try_emplace(point, chain.pid);
      if (fresh || it->second == chain.pid) continue;
      shared.insert(it->second);
      shared.insert(chain.pid);
    }
  return shared;
}

void DrawDomain(const MapCanvas& canvas, std::span<const MapPoint> points, Color color, bool shared,
                DrawMode mode) {
  DrawRing(canvas, points, StyleOf(StyleId::kDomain).width, ColorOfMode(mode, color));
  const Style& corner = StyleOf(StyleId::kDomainVertex);
  const bool asked = canvas.ormel.layers.On(Layer::kDomainVertices);
  const bool digitizing = canvas.ormel.mouse.MouseMode == MouseMode::kDigitize;
  if (asked && (mode == DrawMode::kSelected || shared || digitizing))
    MarkVertices(canvas, points, mode == DrawMode::kErase ? kMapBackground : corner.color, corner.width);
  if (mode == DrawMode::kSelected) MarkVertices(canvas, points, VertexColor(mode), 1.0);
}

void DrawFluxLine(const MapCanvas& canvas, std::span<const MapPoint> points, DrawMode mode) {
  const Style& style = StyleOf(StyleId::kFluxLine);
  canvas.vg.vgGDIPolyline(points, PenStyle::kSolid, style.width, ColorOfMode(mode, style.color));
  MarkVertices(canvas, points, VertexColor(mode), 1.0);
}

}  // namespace

void MarkVertices(const MapCanvas& canvas, std::span<const MapPoint> points, Color color, double pen_width) {
  for (const MapPoint& point : points)
    canvas.vg.vgGDISymbol(point, StyleOf(StyleId::kVertex).symbol, color, color, 1.0, pen_width);
}

void ElemDrawAllLinesinks(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ElemDrawAllLinesinks");
  const VertexChains chains(canvas.ormel.db(), "LinesinkStrings");
  RowReader rows(canvas.ormel.db(), "select PID,HeadSpecified,Drain,FarField from LinesinkStrings");
  while (rows.Next()) {
    if (canvas.IsLifted(Element::kLinesink, rows.Long(0))) continue;
    DrawLinesink(canvas, chains.Of(rows.Long(0)), LinesinkStyle(rows.Bool(1), rows.Bool(2), rows.Bool(3)),
                 DrawMode::kNormal);
  }
}

void ElemDrawLinesinkString(const MapCanvas& canvas, Pid pid, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawLinesinkString");
  RowReader rows(canvas.ormel.db(), "select HeadSpecified,Drain,FarField from LinesinkStrings where PID=?",
                 {pid});
  if (!rows.Next()) return;
  DrawLinesink(canvas, ChainOf(canvas.ormel.db(), pid),
               LinesinkStyle(rows.Bool(0), rows.Bool(1), rows.Bool(2)), mode);
}

void ElemDrawAllNoFlow(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ElemDrawAllNoFlow");
  const VertexChains chains(canvas.ormel.db(), "NoFlowStrings");
  RowReader rows(canvas.ormel.db(), "select PID,Closed,Color from NoFlowStrings");
  while (rows.Next()) {
    if (canvas.IsLifted(Element::kBarrier, rows.Long(0))) continue;
    DrawBarrier(canvas, chains.Of(rows.Long(0)), rows.Bool(1), {static_cast<std::int32_t>(rows.Long(2))},
                DrawMode::kNormal);
  }
}

void ElemDrawNoFlowString(const MapCanvas& canvas, Pid pid, bool closed, Color color, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawNoFlowString");
  DrawBarrier(canvas, ChainOf(canvas.ormel.db(), pid), closed, color, mode);
}

void ElemDrawAllInhos(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ElemDrawAllInhos");
  const VertexChains chains(canvas.ormel.db(), "Inhomogeneities");
  const std::unordered_set<Pid> shared = DomainsWithSharedCorner(chains);
  RowReader rows(canvas.ormel.db(), "select PID,Color from Inhomogeneities");
  while (rows.Next()) {
    if (canvas.IsLifted(Element::kInhomogeneity, rows.Long(0))) continue;
    DrawDomain(canvas, chains.Of(rows.Long(0)), {static_cast<std::int32_t>(rows.Long(1))},
               shared.count(rows.Long(0)) != 0, DrawMode::kNormal);
  }
}

void ElemDrawInho(const MapCanvas& canvas, Pid pid, Color color, DrawMode mode) {
  const Named named(canvas.ormel, "ElemDrawInho");
  const bool asked = canvas.ormel.layers.On(Layer::kDomainVertices);
  bool shared = false;
  if (asked) {
    RowReader rows(canvas.ormel.db(),
                   "select count(*) from Vertices as a, Vertices as b where a.PID=? and b.X=a.X and b.Y=a.Y "
                   "and b.PID<>a.PID and b.PID in (select PID from Inhomogeneities)",
                   {pid});
    shared = rows.Next() && rows.Long(0) > 0;
  }
  DrawDomain(canvas, ChainOf(canvas.ormel.db(), pid), color, shared, mode);
}

void ModelDrawAllFluxInspect(const MapCanvas& canvas) {
  const Named named(canvas.ormel, "ModelDrawAllFluxInspect");
  const VertexChains chains(canvas.ormel.db(), "FluxInspect");
  RowReader rows(canvas.ormel.db(), "select PID from FluxInspect");
  while (rows.Next())
    if (!canvas.IsLifted(Element::kFluxLine, rows.Long(0)))
      DrawFluxLine(canvas, chains.Of(rows.Long(0)), DrawMode::kNormal);
}

void ModelDrawFluxInspect(const MapCanvas& canvas, Pid pid, DrawMode mode) {
  const Named named(canvas.ormel, "ModelDrawFluxInspect");
  DrawFluxLine(canvas, ChainOf(canvas.ormel.db(), pid), mode);
}

}  // namespace ormel
