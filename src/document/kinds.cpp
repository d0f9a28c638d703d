#include "document/kinds.h"

#include <array>
#include <string>

#include "core/ormel.h"
#include "store/bulk.h"
#include "store/database.h"
#include "text/strings.h"

namespace ormel {
namespace {

constexpr EditCaptions kOfStrings{"&Properties...", "&Move Vertex", "&Delete..."};
constexpr std::string_view kMoveVertex = "Move Vertex";

constexpr std::array kKinds{
    ElementKind{Element::kUniformFlow,
                "",
                "",
                Shape::kPoint,
                1,
                "Uniform Flow",
                "Uniform Flows",
                Spoils::kSolution,
                {"Uniform Flow &Properties", "&Move Uniform Flow", "&Delete Uniform Flow"},
                kMoveVertex},
    ElementKind{Element::kWell,
                "Wells",
                "VID",
                Shape::kPoint,
                1,
                "Well",
                "Wells",
                Spoils::kSolution,
                {"Well &Properties", "&Move Well", "&Delete Well"},
                "Move Well",
                true},
    ElementKind{Element::kLinesink, "LinesinkStrings", "PID", Shape::kString, 2, "Linesink", "Linesinks",
                Spoils::kSolution, kOfStrings, kMoveVertex, true},
    ElementKind{Element::kInhomogeneity, "Inhomogeneities", "PID", Shape::kRing, 3, "Inhomogeneity",
                "Inhomogeneities", Spoils::kSolution, kOfStrings, kMoveVertex, true},
    ElementKind{Element::kBarrier, "NoFlowStrings", "PID", Shape::kString, 2, "Horizontal Barrier",
                "Horizontal Barriers", Spoils::kSolution, kOfStrings, kMoveVertex, true},
    ElementKind{Element::kFluxLine, "FluxInspect", "PID", Shape::kString, 2, "Flux Inspection Line",
                "Flux Inspection Lines", Spoils::kRerun, kOfStrings, kMoveVertex},
    ElementKind{Element::kCapzone, "Capzones", "PID", Shape::kString, 3, "Protection Area",
                "Protection Areas", Spoils::kNothing, kOfStrings, kMoveVertex},
    ElementKind{Element::kTestPoint,
                "TestPoints",
                "VID",
                Shape::kPoint,
                1,
                "Test Point",
                "Test Points",
                Spoils::kRerun,
                {"Test Point &Properties", "&Move Test Point", "&Delete Test Point"},
                "Move Test Point"},
    ElementKind{Element::kWhpaBoundaryVertex,
                "WHPAs",
                "",
                Shape::kPoint,
                1,
                "Simple WHPA",
                "Simple WHPAs",
                Spoils::kNothing,
                {"&Properties", "&Move Boundary Vertex", "&Delete"},
                kMoveVertex},
    ElementKind{Element::kParticle,
                "Particles",
                "VID",
                Shape::kPoint,
                1,
                "Particle",
                "Particles",
                Spoils::kPaths,
                {"Particle &Properties", "&Move Particle", "&Delete Particle"},
                "Move Particle"},
    ElementKind{Element::kTextLabel,
                "TextLabels",
                "",
                Shape::kFree,
                1,
                "Text",
                "Texts",
                Spoils::kNothing,
                {"Text &Properties", "&Move Label", "&Delete Label"},
                "Move Text"},
};

/// The row of a kind that claims a vertex; one parameter, the vertex or its polygon.
std::string ClaimSql(const ElementKind& kind) {
  if (kind.element == Element::kWhpaBoundaryVertex)
    return "select count(*) from WHPAs where ? in (VID1,VID2)";
  return "select count(*) from " + std::string(kind.table) + " where " + std::string(kind.key) + "=?";
}

}  // namespace

std::span<const ElementKind> ElementKinds() {
  return kKinds;
}

const ElementKind* FindKind(Element element) {
  for (const ElementKind& kind : kKinds)
    if (kind.element == element) return &kind;
  return nullptr;
}

const ElementKind* FindKind(std::string_view table) {
  for (const ElementKind& kind : kKinds)
    if (!kind.table.empty() && EqualNoCase(kind.table, table)) return &kind;
  return nullptr;
}

Element OwnerOf(Ormel& ormel, Vid vid, Pid pid) {
  if (pid == kUniformFlowPoint) return Element::kUniformFlow;
  for (const ElementKind& kind : kKinds) {
    if (kind.table.empty() || kind.shape == Shape::kFree || (kind.Polygon() && pid < 1)) continue;
    if (kind.element == Element::kWhpaBoundaryVertex && !ormel.db().HasField("WHPAs", "VID1")) continue;
    if (ormel.db().Scalar(ClaimSql(kind), {kind.Polygon() ? pid : vid}).AsLong() > 0) return kind.element;
  }
  return Element::kNone;
}

Owner OwnerOf(Ormel& ormel, Vid vid) {
  const Value pid = ormel.db().Scalar("select PID from Vertices where VID=?", {vid});
  if (pid.IsNull()) return {};
  const Element element = OwnerOf(ormel, vid, pid.AsLong());
  return element == Element::kNone ? Owner{} : Owner{element, vid, pid.AsLong()};
}

}  // namespace ormel
