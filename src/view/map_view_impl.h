// The map of a running program: window, picture, temporary shapes, state of menus and toolbar.
#pragma once

#include <functional>
#include <string>

#include "core/map_view.h"
#include "view/display_list.h"
#include "view/overlay.h"
#include "view/picture_cache.h"
#include "view/redraw.h"
#include "view/vg_gdi.h"

namespace ormel {

/// The surface that a program gives to its map.  A batch run has none.
class MapSurface {
 public:
  virtual ~MapSurface() = default;
  /// The device of the picture, ready to be drawn on; null while there is nothing to draw on (a window of no
  /// size). The device stays valid until EndPicture().
  virtual DrawingDevice* BeginPicture() = 0;
  virtual void EndPicture() = 0;
  /// Picture, temporary shapes, cursor or menus may have changed: show them soon.
  virtual void Update() = 0;
};

/// What the pointer calls in rooms that the view does not know.  Empty while such a room is not there.
struct MapHooks {
  std::function<void()> basemap_select;  ///< base maps at the last click
};

class MapViewImpl final : public MapView {
 public:
  /// `surface` may be null.  The view registers itself nowhere: the program puts it into the ports.
  MapViewImpl(Ormel& ormel, MapSurface* surface);
  ~MapViewImpl() override;

  // What procedures ask of the map.
  void ZoomActions(Zoom code, const MapRect& rect = {}) override;
  void DrawElement(Element element, Vid vid, Pid pid, DrawMode mode) override;
  void DrawWell(MapPoint at, double setback, double radius, DrawMode mode) override;
  void DrawPoint(Element element, MapPoint at, DrawMode mode) override;
  void DrawTracedLines() override;
  void ElemTurnOffSelection() override;
  void ClearMouseMode() override;
  void TurnOffMenus() override;
  void TurnOnMenus() override;
  void SetUpToolbar() override;
  void SetUpLayers() override;
  /// Repaints the picture if a shape that belonged to it was erased, then lets the surface show it.
  void Refresh() override;
  void DisableMouse();
  void EnableMouse();

  // For the window.
  /// Another window on the map that leaves selection and mouse mode alone: the wheel, a drag of the map, a
  /// window of another size.
  void ApplyView(const MapRect& window);
  /// The window zoomed by `factor` (below 1 is closer) about a device position that stays where it is.
  void ZoomAbout(DevicePoint at, double factor);
  /// The window moved so that the world under `from` lies under `to`.
  void Pan(DevicePoint from, DevicePoint to);
  /// Paints the temporary shapes on top of the picture.
  void PaintOverlay(DrawingDevice& device) const { overlay_.Paint(device); }
  /// Call when painting is due, before the picture is shown.
  void BeforePaint();

  Ormel& ormel() { return ormel_; }
  ViewState& state() { return state_; }
  MapHooks& hooks() { return hooks_; }
  VgGdi& vg() { return vg_; }
  Overlay& overlay() { return overlay_; }
  /// Starts a shape of the overlay: what is drawn on the vector layer goes to it until the object dies.
  class OverlayShape;

  /// Draws the map anew, whatever "Manual Redraw" says: window fitted to the surface, all layers.
  void Redraw();
  const PictureCache& picture() const { return picture_; }
  int redraw_count() const { return redraw_count_; }

 private:
  /// True when the code is done: it only starts or asks something, without a redraw.
  bool ZoomMode(Zoom code);
  void ApplyRectangle(const MapRect& rect);
  void RestoreWindow();
  void SaveWindow();
  void Recentre();
  void SetWindow(const MapRect& window);
  void Tail();
  void StoreWindow();
  void CheckZoomLimit();
  void OfferLayers(bool fresh);
  void DrawPicture(DrawingDevice& device);
  void Erase(const Overlay::Key& key, const std::function<void()>& draw_erased);
  MapCanvas canvas() { return {ormel_, vg_}; }

  Ormel& ormel_;
  MapSurface* surface_;
  VgGdi vg_;
  DisplayList idle_;  ///< target of the vector layer outside a drawing
  ViewState state_;
  PictureCache picture_;
  MapHooks hooks_;
  Overlay overlay_;
  MapRect drawn_window_;   ///< of the last picture that could be drawn
  std::string layers_of_;  ///< project that the layer switches were set up for
  bool dirty_ = false;     ///< a shape of the picture was erased
  bool drawing_ = false;
  double last_seconds_ = 0.0;  ///< how long the last picture took
  int redraw_count_ = 0;
};

class MapViewImpl::OverlayShape {
 public:
  OverlayShape(MapViewImpl& view, const Overlay::Key& key);
  ~OverlayShape();
  OverlayShape(const OverlayShape&) = delete;
  OverlayShape& operator=(const OverlayShape&) = delete;

 private:
  MapViewImpl& view_;
  VgGdi::Redirect redirect_;
};

/// "ZOOM_CMDS": the window's menu.
void ZOOM_CMDS(Ormel& ormel, int index);

}  // namespace ormel
