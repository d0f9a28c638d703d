#include "ormel/map_widget.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QShortcut>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/command.h"
#include "core/ormel.h"
#include "model/select_beneath.h"
#include "ormel/qt_text.h"
#include "qtdevice/painter_device.h"
#include "shell/context_menu.h"
#include "shell/menus.h"
#include "view/outdated.h"

namespace ormel {
namespace {

constexpr int kFitDelay = 120;    ///< milliseconds of rest before a window of another size is drawn
constexpr int kWheelDelay = 90;   ///< milliseconds of rest before a zoom by the wheel is drawn
constexpr double kNotch = 120.0;  ///< angle of one notch of the wheel
constexpr double kZoomPerNotch = 1.25;

struct CursorRow {
  int number;
  Qt::CursorShape shape;
};
constexpr std::array kCursors = {CursorRow{0, Qt::ArrowCursor}, CursorRow{2, Qt::CrossCursor},
                                 CursorRow{3, Qt::WaitCursor}, CursorRow{5, Qt::SizeAllCursor}};

struct KeyRow {
  int key;
  MapKey meaning;
};
constexpr std::array kKeys = {
    KeyRow{Qt::Key_Left, MapKey::kLeft},     KeyRow{Qt::Key_Right, MapKey::kRight},
    KeyRow{Qt::Key_Up, MapKey::kUp},         KeyRow{Qt::Key_Down, MapKey::kDown},
    KeyRow{Qt::Key_PageUp, MapKey::kPageUp}, KeyRow{Qt::Key_PageDown, MapKey::kPageDown},
    KeyRow{Qt::Key_Home, MapKey::kHome},     KeyRow{Qt::Key_End, MapKey::kEnd},
    KeyRow{Qt::Key_Escape, MapKey::kEscape}, KeyRow{Qt::Key_Backspace, MapKey::kBackspace}};

/// Commands for what lies under the pointer; the menu goes by itself.
void ShowContextMenu(MapWidget& map, Ormel& ormel, MapPoint at, QPoint global) {
  auto* menu = new QMenu(&map);
  menu->setObjectName(QStringLiteral("ContextMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const ContextItem& entry : ContextMenu(ormel, at)) {
    if (entry.line) menu->addSeparator();
    QObject::connect(menu->addAction(ToQString(entry.caption)), &QAction::triggered, &map,
                     [&map, &ormel, item = entry.item] {
                       Dispatch(ormel, item->control, item->index);
                       emit map.Touched();
                     });
  }
  emit map.Touched();  // the place may have another selection
  menu->popup(global);
}

int ShiftOf(Qt::KeyboardModifiers modifiers) {
  return (modifiers.testFlag(Qt::ShiftModifier) ? kShiftKey : 0) +
         (modifiers.testFlag(Qt::ControlModifier) ? kCtrlKey : 0) +
         (modifiers.testFlag(Qt::AltModifier) ? kAltKey : 0);
}

}  // namespace

/// The next picture while the view draws it; the old one is shown until it is done.
struct MapWidget::PictureInWork {
  /// `spare` is painted over when it has the size and nobody else looks at it.
  PictureInWork(QImage spare, QSize size, double ratio, int dpi)
      : image(spare.size() == size && spare.isDetached() ? std::move(spare)
                                                         : QImage(size, QImage::Format_RGB32)),
        painter(&image),
        device(painter, size, dpi, dpi),
        pixel_ratio(ratio) {}
  QImage image;
  QPainter painter;
  QPainterDevice device;
  double pixel_ratio;
};

MapWidget::MapWidget(Ormel& ormel, QWidget* parent) : QWidget(parent), ormel_(ormel) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(160, 120);
  for (QTimer* timer : {&fit_timer_, &wheel_timer_}) timer->setSingleShot(true);
  connect(&fit_timer_, &QTimer::timeout, this, &MapWidget::Fit);
  connect(&wheel_timer_, &QTimer::timeout, this, &MapWidget::ApplyWheel);
  // As a shortcut, since the key would go to the next widget before it came here; it still does where
  // nothing lies beneath.
  auto* beneath = new QShortcut(QKeySequence(Qt::Key_Tab), this);
  beneath->setContext(Qt::WidgetShortcut);
  connect(beneath, &QShortcut::activated, this, [this] {
    const bool done = Ready() && SelectBeneath(ormel_);
    if (!done) focusNextChild();
    emit Touched();
  });
}

MapWidget::~MapWidget() = default;

bool MapWidget::Ready() const {
  return view_ != nullptr && in_work_ == nullptr && (!busy_ || !busy_());
}

void MapWidget::Run(const char* name, const std::function<void()>& body) {
  RunCommand(ormel_, name, body);
  emit Touched();
}

QSize MapWidget::PixelSize() const {
  const double ratio = devicePixelRatioF();
  return {static_cast<int>(std::lround(width() * ratio)), static_cast<int>(std::lround(height() * ratio))};
}

DevicePoint MapWidget::ToDevice(QPointF at) const {
  const double ratio = devicePixelRatioF();
  return {static_cast<int>(std::floor(at.x() * ratio)), static_cast<int>(std::floor(at.y() * ratio))};
}

DrawingDevice* MapWidget::BeginPicture() {
  if (width() < 1 || height() < 1 || in_work_ != nullptr) return nullptr;
  const double ratio = devicePixelRatioF();
  const int dpi = static_cast<int>(std::lround(logicalDpiX() * ratio));
  in_work_ = std::make_unique<PictureInWork>(std::exchange(spare_, QImage()), PixelSize(), ratio, dpi);
  return &in_work_->device;
}

void MapWidget::EndPicture() {
  in_work_->painter.end();
  spare_ = std::exchange(picture_, std::move(in_work_->image));
  spare_.setDevicePixelRatio(1.0);
  picture_.setDevicePixelRatio(in_work_->pixel_ratio);
  in_work_.reset();
  preview_.reset();
  update();
}

void MapWidget::Update() {
  ShowCursor();
  update();
}

void MapWidget::ShowCursor() {
  for (const CursorRow& row : kCursors)
    if (row.number == ormel_.mouse.cursor) setCursor(row.shape);
}

void MapWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!preview_.isIdentity()) painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setTransform(preview_);
  painter.drawImage(QPointF(0, 0), picture_);
  if (ormel_.project.ProjectOpen) {
    PaintOverlay(painter);
  } else {
    painter.setPen(Qt::gray);
    painter.drawText(rect(), Qt::AlignCenter, tr("Open a project, or drop one here."));
  }
}

void MapWidget::PaintOverlay(QPainter& painter) {
  if (view_ == nullptr) return;
  const double ratio = devicePixelRatioF();
  painter.scale(1.0 / ratio, 1.0 / ratio);
  const int dpi = static_cast<int>(std::lround(logicalDpiX() * ratio));
  QPainterDevice device(painter, PixelSize(), dpi, dpi);
  view_->PaintOverlay(device);
  DrawOutdatedBand(ormel_, device, {0, 0, PixelSize().width(), PixelSize().height()});
}

void MapWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  fit_timer_.start(kFitDelay);
}

void MapWidget::Fit() {
  if (!Ready()) {
    fit_timer_.start(kFitDelay);
    return;
  }
  Run("Form_Resize", [this] { view_->ApplyView(ormel_.window.SolveWindow); });
}

void MapWidget::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (!Ready() || !ormel_.project.ProjectOpen || dragging_) return;
  if (wheel_timer_.isActive() && wheel_at_ != event->position()) ApplyWheel();
  wheel_at_ = event->position();
  const double closer = std::pow(kZoomPerNotch, event->angleDelta().y() / kNotch);
  wheel_factor_ /= closer;
  preview_ = QTransform::fromTranslate(wheel_at_.x(), wheel_at_.y())
                 .scale(1.0 / wheel_factor_, 1.0 / wheel_factor_)
                 .translate(-wheel_at_.x(), -wheel_at_.y());
  update();
  wheel_timer_.start(kWheelDelay);
}

void MapWidget::ApplyWheel() {
  wheel_timer_.stop();
  if (!Ready()) {
    wheel_timer_.start(kWheelDelay);
    return;
  }
  const double factor = std::exchange(wheel_factor_, 1.0);
  preview_.reset();
  Run("Map_MouseWheel", [&] { view_->ZoomAbout(ToDevice(wheel_at_), factor); });
}

void MapWidget::mousePressEvent(QMouseEvent* event) {
  if (wheel_timer_.isActive()) ApplyWheel();
  if (!Ready()) return;
  if (event->button() == Qt::MiddleButton) {
    if (!ormel_.project.ProjectOpen) return;
    dragging_ = true;
    drag_from_ = event->position();
    setCursor(Qt::ClosedHandCursor);
    return;
  }
  if (dragging_) return;
  const bool right = event->button() == Qt::RightButton;
  const DevicePoint device = ToDevice(event->position());
  const MapPoint at{view_->vg().vgGDIDeviceToWorldX(device.x, false),
                    view_->vg().vgGDIDeviceToWorldY(device.y, false)};
  // Asked before the press, which may end what was being drawn.
  const bool menu = right && OffersContextMenu(ormel_, at);
  Forward(Map_MouseDown, *event);
  if (menu && Ready()) ShowContextMenu(*this, ormel_, at, event->globalPosition().toPoint());
}

void MapWidget::mouseMoveEvent(QMouseEvent* event) {
  if (dragging_) {
    const QPointF shift = event->position() - drag_from_;
    preview_ = QTransform::fromTranslate(shift.x(), shift.y());
    update();
    return;
  }
  if (Ready()) Forward(Map_MouseMove, *event);
}

void MapWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (dragging_) {
    if (event->button() == Qt::MiddleButton) EndDrag(event->position());
    return;
  }
  if (Ready()) Forward(Map_MouseUp, *event);
}

void MapWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  // The second press at the same place is no press of its own: a string would get a vertex twice.
  if (event->button() != Qt::LeftButton) return mousePressEvent(event);
  if (!Ready() || dragging_) return;
  Map_DblClick(*view_);
  emit Touched();
}

void MapWidget::leaveEvent(QEvent*) {
  if (Ready()) Map_MouseLeave(*view_);
}

void MapWidget::keyPressEvent(QKeyEvent* event) {
  const auto row =
      std::find_if(kKeys.begin(), kKeys.end(), [&](const KeyRow& r) { return r.key == event->key(); });
  // The menu's undo rests while something is being drawn; its key then means the last vertex.
  const bool undo = event->matches(QKeySequence::Undo);
  const bool known = (undo || row != kKeys.end()) && Ready() &&
                     Map_KeyDown(*view_, undo ? MapKey::kBackspace : row->meaning);
  if (!known) QWidget::keyPressEvent(event);
  emit Touched();
}

void MapWidget::Forward(MouseHandler handler, const QMouseEvent& event) {
  MouseButton button = MouseButton::kNone;
  if (event.button() == Qt::LeftButton) button = MouseButton::kLeft;
  if (event.button() == Qt::RightButton) button = MouseButton::kRight;
  handler(*view_, button, ShiftOf(event.modifiers()), ToDevice(event.position()));
  emit Touched();
}

void MapWidget::EndDrag(QPointF at) {
  dragging_ = false;
  ShowCursor();
  preview_.reset();
  update();
  if (Ready() && at != drag_from_)
    Run("Map_MouseDrag", [&] { view_->Pan(ToDevice(drag_from_), ToDevice(at)); });
}

}  // namespace ormel
