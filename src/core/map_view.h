// What procedures below the view ask of the map.
#pragma once

#include <optional>

#include "core/types.h"

namespace ormel {

/// Codes of ZoomActions.
enum class Zoom : int {
  kRedrawInPlace = 0,
  kIn = 1,
  kOut = 2,
  kExtents = 3,
  kStartRectangle = 4,
  kRedraw = 5,
  kSaveWindow = 7,
  kRestoreWindow = 8,
  kLeft = 9,
  kRight = 10,
  kUp = 11,
  kDown = 12,
  kRecentre = 13,
  kApplyRectangle = 20,
  kApplyWindow = 21,
  kRecentreAtClick = 22,
};

class MapView {
 public:
  virtual ~MapView() = default;

  /// The one way to a redraw and to a change of the window.
  virtual void ZoomActions(Zoom code, const MapRect& rect = {}) = 0;
  /// Marks the place of an element that has no row yet, until the command ends, or the line that begins
  /// there.
  virtual void ShowPlace(Element element, MapPoint at) = 0;
  /// The lines of `solution.traced_lines` over the picture; the next redraw takes them into it.
  virtual void DrawTracedLines() {}
  virtual void ElemTurnOffSelection() = 0;
  virtual void ClearMouseMode() = 0;
  virtual void TurnOffMenus() = 0;
  virtual void TurnOnMenus() = 0;
  virtual void SetUpToolbar() = 0;
  virtual void SetUpLayers() = 0;
  /// The picture as the project is within a command, before a question or a dialog.  At a command's end the
  /// map follows by itself: no procedure draws what it has changed.
  virtual void Refresh() = 0;
  /// The union of the base maps that are shown; nothing when none is.
  virtual std::optional<Extents> ShownMapExtents() { return std::nullopt; }
};

}  // namespace ormel
