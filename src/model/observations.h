// Objects that observe the flow or annotate the map: test points, particles, text labels, flux inspection
// lines, capture zone polygons.  None of them changes the flow.
#pragma once

#include <span>
#include <string>

#include "core/types.h"
#include "core/user_interface.h"

namespace ormel {

struct Ormel;

struct TestPointRow {
  std::string Label = "TP";
  double ObsHead = 0.0;  ///< computation length unit
};

struct ParticleRow {
  double Elevation = 0.0;  ///< computation length unit
  bool SatdThick = true;   ///< start at the top of the saturated thickness, not at `Elevation`
  bool Forward = true;
};

enum class LabelType : int { kPermanent = 0, kHydrography = 1 };

struct TextLabelRow {
  std::string Text{};
  FontChoice font{};
  LabelType type = LabelType::kPermanent;
  double ScalerX = 0.0;  ///< width of the window in which it was placed [map units]
};

/// Each puts the bound recordset on the row; false when there is none.
bool FindTestPoint(Ormel& ormel, Vid vid, TestPointRow& found);
bool FindParticle(Ormel& ormel, Vid vid, ParticleRow& found);
/// A label is known by the number of its row.
bool FindTextLabel(Ormel& ormel, std::int64_t row, TextLabelRow& found);

/// Each adds an object without a question, with its vertices, and leaves the bound recordsets on it.
Vid StoreTestPoint(Ormel& ormel, const TestPointRow& row, MapPoint at);
Vid StoreParticle(Ormel& ormel, const ParticleRow& row, MapPoint at);
std::int64_t StoreTextLabel(Ormel& ormel, const TextLabelRow& row, MapPoint at);
Pid StoreFluxLine(Ormel& ormel, const std::string& label, std::span<const MapPoint> points);
Pid StoreCapzone(Ormel& ormel, const std::string& label, std::span<const MapPoint> points);

void ChangeTestPoint(Ormel& ormel, Vid vid, const TestPointRow& row, MapPoint at);
void ChangeParticle(Ormel& ormel, Vid vid, const ParticleRow& row);
/// Place and scale stay.
void ChangeTextLabel(Ormel& ormel, std::int64_t row, const TextLabelRow& label);
void MoveTextLabel(Ormel& ormel, std::int64_t row, MapPoint to);

/// The traces on view do not show the particles as they stand: the next solve traces anew.
void PathlinesOutdated(Ormel& ormel);

/// Menu and toolbar: one click places the object.
void BeginTestPoint(Ormel& ormel);
void BeginParticle(Ormel& ormel);
/// The object at the last click.
void ModelAddTestPoint(Ormel& ormel);
void ModelAddParticle(Ormel& ormel);
void ModelAddText(Ormel& ormel);

/// The dialog, then vertices by clicks, then the right click.
void ModelAddFluxInspect(Ormel& ormel);
void ModelAddFluxVertex(Ormel& ormel, bool first);
void ModelEndFluxInspect(Ormel& ormel);
void ModelAddCapzone(Ormel& ormel);
void ModelAddCZVertex(Ormel& ormel, bool first);
void ModelEndCapzone(Ormel& ormel);

}  // namespace ormel
