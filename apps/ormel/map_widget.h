// The map in the window.
#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QTimer>
#include <QTransform>
#include <QWidget>
#include <functional>
#include <memory>

#include "core/types.h"
#include "view/map_view_impl.h"
#include "view/mouse.h"

namespace ormel {

struct Ormel;
class QPainterDevice;

/// Shows the picture that the view draws, and the temporary shapes above it.  The picture is kept in the
/// screen's own pixels; painting the window never reads the project.
///
/// The mouse goes to the view's mouse modes.  Beside them the wheel zooms about the pointer and the middle
/// button drags the map: the picture follows at once, and the map is drawn anew when the hand rests.
class MapWidget : public QWidget, public MapSurface {
  Q_OBJECT
 public:
  MapWidget(Ormel& ormel, QWidget* parent);
  ~MapWidget() override;

  void SetView(MapViewImpl* view) { view_ = view; }
  /// False while a command runs: then the widget only shows what it has.
  void SetBusyTest(std::function<bool()> busy) { busy_ = std::move(busy); }

  // MapSurface
  DrawingDevice* BeginPicture() override;
  void EndPicture() override;
  void Update() override;

  const QImage& picture() const { return picture_; }

 signals:
  /// Something of the controller may have changed.
  void Touched();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct PictureInWork;

  bool Ready() const;
  using MouseHandler = void (*)(MapViewImpl&, MouseButton, int, DevicePoint);
  void Forward(MouseHandler handler, const QMouseEvent& event);
  void Run(const char* name, const std::function<void()>& body);
  DevicePoint ToDevice(QPointF at) const;
  QSize PixelSize() const;
  void ShowCursor();
  void Fit();
  void ApplyWheel();
  void EndDrag(QPointF at);
  void PaintOverlay(QPainter& painter);

  Ormel& ormel_;
  MapViewImpl* view_ = nullptr;
  std::function<bool()> busy_;
  QImage picture_;
  QImage spare_;  ///< the picture before: new memory for each redraw costs as much as a layer
  std::unique_ptr<PictureInWork> in_work_;
  QTransform preview_;  ///< of the picture, until the map is drawn anew [logical pixels]
  QTimer fit_timer_, wheel_timer_;
  double wheel_factor_ = 1.0;
  QPointF wheel_at_;
  QPointF drag_from_;
  bool dragging_ = false;
};

}  // namespace ormel
