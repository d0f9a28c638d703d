// The map of a running program: window, picture, temporary shapes, state of menus and toolbar.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/changes.h"
#include "core/map_view.h"
#include "document/elements.h"
#include "model/validity.h"
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

/// What is being dragged: it is not in the picture until it is let go.
struct Lifted {
  struct Shape {
    std::vector<MapPoint> points;
    bool closed = false;
    int vertex = -1;  ///< the one that moves alone; -1 when all move
  };
  MapPoint from;  ///< the press
  std::vector<ElementId> ids;
  std::vector<Shape> shapes;
};

class MapViewImpl final : public MapView, public ChangeListener {
 public:
  /// `surface` may be null.  The program puts the view into the ports; it listens to the change records by
  /// itself.
  MapViewImpl(Ormel& ormel, MapSurface* surface);
  ~MapViewImpl() override;

  // What procedures ask of the map.
  void ZoomActions(Zoom code, const MapRect& rect = {}) override;
  void ShowPlace(Element element, MapPoint at) override;
  void DrawTracedLines() override;
  void ElemTurnOffSelection() override;
  void ClearMouseMode() override;
  void TurnOffMenus() override;
  void TurnOnMenus() override;
  void SetUpToolbar() override;
  void SetUpLayers() override;
  void Refresh() override;
  std::optional<Extents> ShownMapExtents() override;
  /// What a command has changed comes into the picture, the selection, the menus and the toolbar, and what it
  /// spoils of the solution is asked about.
  void CommandEnded(const ChangeRecord& record) override;
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

  /// Takes the selected elements out of the picture for a drag that begins at a place; the end of the move
  /// brings them back.
  void LiftSelection(MapPoint from);
  const Lifted& lifted() const { return lifted_; }
  /// Keys that were down at the press of a click that selects, or drags a box; -1 while there is none.
  int& press_shift() { return press_shift_; }

  Ormel& ormel() { return ormel_; }
  ViewState& state() { return state_; }
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
  bool ChangeWindow(Zoom code, const MapRect& rect);
  void ApplyRectangle(const MapRect& rect);
  void RestoreWindow();
  void SaveWindow();
  void Recentre();
  void SetWindow(const MapRect& window);
  void Tail();
  void KeepRubberStart(const std::function<void()>& change);
  void StoreWindow();
  void CheckZoomLimit();
  void OfferLayers(bool fresh);
  void DrawPicture(DrawingDevice& device);
  /// The project is as it was when the picture was drawn.
  bool Current() const;
  void NoteDrawn();
  /// The picture follows the rows of a command.
  void FollowRows(const ChangeRecord& record);
  /// The user redraws by hand: only what is new is laid over the picture.
  void FollowByHand(const ChangeRecord& record);
  /// The string in digitizing, as far as it goes, over the picture.
  void ShowDigitized();
  void ShowSelection();
  void ForgetGone();
  void RemovePlaces();
  void DrawOver(Element element, Vid vid, Pid pid);
  MapCanvas canvas() { return {ormel_, vg_}; }
  void LetGo();

  Ormel& ormel_;
  MapSurface* surface_;
  VgGdi vg_;
  DisplayList idle_;  ///< target of the vector layer outside a drawing
  ViewState state_;
  PictureCache picture_;
  Overlay overlay_;
  MapRect drawn_window_;             ///< of the last picture that could be drawn
  std::string layers_of_;            ///< project that the layer switches were set up for
  bool outdated_ = false;            ///< rows that the picture may show have changed
  std::uint64_t drawn_changes_ = 0;  ///< of the project, in the last picture
  int drawn_connection_ = -1;        ///< of which project
  std::vector<ElementId> shown_;     ///< as highlighted
  Vid shown_vertex_ = -1;
  std::vector<Overlay::Key> places_;
  Pid corners_of_ = kNoPolygon;  ///< the domain in digitizing beside which the others' corners show
  long shown_menus_ = -1;
  Lifted lifted_;
  int press_shift_ = -1;
  SolutionFollower validity_;
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
