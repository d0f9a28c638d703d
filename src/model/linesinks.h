// Line-sink strings: streams, lake shores, drains.
#pragma once

#include <span>
#include <string>

#include "core/types.h"
#include "model/dialog.h"

namespace ormel {

class Recordset;

/// `LinesinkStrings.AutoSWIZC`.
enum class LinesinkLocation : int { kUnknown = 0, kCentreline = 1, kBoundary = 2 };

/// What the user sets of a row of `LinesinkStrings`.  Lengths in computation units.
struct LinesinkRow {
  std::string Label{};
  bool HeadSpecified = true;
  double StartingHead = 0.0;  ///< of a discharge-specified string the sink density [length^2/d]
  double EndingHead = 0.0;
  double Resistance = 0.0;  ///< of the bed [d]
  double Width = 0.0;
  double Depth = 0.0;
  bool Drain = false;
  LinesinkLocation AutoSWIZC = LinesinkLocation::kUnknown;
  bool Farfield = false;  ///< stored for a head-specified string only
  // Of a stream whose flow the solver follows along the string; head-specified and not far-field.
  bool Routing = false;
  bool EndStream = false;     ///< the last of its stream: what it carries goes no further
  double EndInflow = 0.0;     ///< at its upper end [length^3/d]
  double Overlandflow = 0.0;  ///< along it [length^3/d]
};

class LinesinkString final : public OkCancelForm {
 public:
  explicit LinesinkString(Ormel& ormel);
  std::string Title() const override { return "Linesink String Properties"; }
  std::span<const ControlSpec> Controls() const override;
  std::string_view Name() const override { return "LinesinkString"; }

  /// `own_label` is the label that the string has in the store, which is no duplicate of itself; empty for a
  /// new string.
  void Fill(const LinesinkRow& row, const std::string& own_label);
  LinesinkRow Row() const;
  /// Applies far-field state and captions and asks for the focus on the label.
  void SetLabelFocus();

 protected:
  bool Ok() override;
  void Cancelled() override;
  void OtherPressed(std::string_view name) override;
  void Changed(std::string_view name) override;

 private:
  void OfferFields();
  bool CheckBed();
  bool AcceptHeads();
  std::string own_label_;
};

/// False when there is no such string; otherwise the bound recordset stands on it.
bool FindLinesink(Ormel& ormel, Pid pid, LinesinkRow& found);
/// Adds a string without a question: polygon, row and these vertices.
Pid StoreLinesink(Ormel& ormel, const LinesinkRow& row, std::span<const MapPoint> points);
/// Writes an edit.  Far-field clears the routing switch.
void ChangeLinesink(Ormel& ormel, Pid pid, const LinesinkRow& row);

/// The dialog, which comes up with what it held last, then vertices by clicks.
void ElemAddLinesinkString(Ormel& ormel);
/// The last click as a vertex.
void ElemAddLinesinkVertex(Ormel& ormel, bool first);
/// The right click: the dialog once more for the final values.  Type and drain stay as first given.
void ElemEndLinesinkString(Ormel& ormel);

}  // namespace ormel
