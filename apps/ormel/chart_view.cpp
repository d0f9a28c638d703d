#include "ormel/chart_view.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "core/form.h"
#include "ormel/form_dialog.h"
#include "ormel/qt_text.h"
#include "publish/chart_picture.h"

namespace ormel {
namespace {

constexpr double kReach = 9.0;  ///< pixels from the pointer to a point that it means
constexpr int kAway = 14;       ///< pixels between a point and its box
constexpr double kRing = 6.0;

/// Title in bold, then the lines.
QString BoxHtml(const std::string& text) {
  const QStringList lines = ToQString(text).split('\n');
  QString html = "<b>" + lines.value(0).toHtmlEscaped() + "</b>";
  for (const QString& line : lines.mid(1)) html += "<br>" + line.simplified().toHtmlEscaped();
  return html;
}

}  // namespace

ChartControl::ChartControl(std::string_view name, FormDialog& dialog)
    : QChartView(&dialog), name_(name), dialog_(dialog), box_(new QLabel(this)) {
  setMouseTracking(true);
  setRenderHint(QPainter::Antialiasing);
  setMinimumSize(380, 300);
  setFrameShape(QFrame::NoFrame);
  box_->setObjectName(QStringLiteral("pointBox"));
  box_->setStyleSheet(QStringLiteral(
      "QLabel#pointBox { background: #fffdf2; border: 1px solid #8a94a2; padding: 5px; color: #26303c; }"));
  box_->setAttribute(Qt::WA_TransparentForMouseEvents);
  box_->hide();
}

void ChartControl::Show(const ControlState& state) {
  if (state.chart != shown_) {
    shown_ = state.chart;
    at_.reset();
    Fill();
  }
  box_->setVisible(!state.text.empty() && at_.has_value());
  if (state.text.empty()) return;
  QString html = BoxHtml(state.text);
  if (at_ && shown_)
    if (const std::size_t beneath = PointsBeneath(*shown_, Plot(), *at_); beneath > 0)
      html += QStringLiteral("<br><i>%1 more at this place</i>").arg(beneath);
  box_->setText(html);
  PlaceBox();
}

void ChartControl::Fill() {
  if (!shown_) return;
  const std::unique_ptr<QChart> before(chart());
  auto* fresh = new QChart;
  FillChart(*fresh, *shown_, size());
  setChart(fresh);  // the scene owns it
}

PlotArea ChartControl::Plot() const {
  const QRectF area = mapFromScene(chart()->mapToScene(chart()->plotArea())).boundingRect();
  // Whole pixels lose the part that the chart itself keeps.
  const QPointF corner = chart()->mapToScene(chart()->plotArea().topLeft()) - sceneRect().topLeft();
  return {corner.x(), corner.y(), area.isNull() ? 1.0 : chart()->plotArea().width(),
          area.isNull() ? 1.0 : chart()->plotArea().height()};
}

std::optional<ChartPick> ChartControl::PickAt(QPointF at) const {
  if (!shown_) return std::nullopt;
  return PointNear(*shown_, Plot(), {at.x(), at.y()}, kReach);
}

void ChartControl::PointAt(std::optional<ChartPick> pick) {
  if (pick == at_) return;
  at_ = pick;
  dialog_.Do([&](Form& form) { form.PointAt(name_, at_ ? &*at_ : nullptr); });
  setCursor(at_ ? Qt::PointingHandCursor : Qt::ArrowCursor);
  viewport()->update();
}

void ChartControl::PlaceBox() {
  if (!at_ || !shown_) return;
  const PlotPosition p = PositionOf(*shown_, Plot(), shown_->series[at_->series].points[at_->point]);
  box_->adjustSize();
  int left = static_cast<int>(p.x) + kAway, top = static_cast<int>(p.y) - box_->height() - kAway;
  if (left + box_->width() > width()) left = static_cast<int>(p.x) - kAway - box_->width();
  if (top < 0) top = static_cast<int>(p.y) + kAway;
  box_->move(std::max(0, left), std::min(top, height() - box_->height()));
  box_->raise();
}

void ChartControl::mouseMoveEvent(QMouseEvent* event) {
  QChartView::mouseMoveEvent(event);
  PointAt(PickAt(event->position()));
}

void ChartControl::mouseReleaseEvent(QMouseEvent* event) {
  QChartView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton) return;
  if (const auto pick = PickAt(event->position()))
    dialog_.Do([&](Form& form) { form.PickPoint(name_, *pick); });
}

void ChartControl::resizeEvent(QResizeEvent* event) {
  QChartView::resizeEvent(event);
  Fill();
}

void ChartControl::leaveEvent(QEvent* event) {
  QChartView::leaveEvent(event);
  PointAt(std::nullopt);
}

void ChartControl::drawForeground(QPainter* painter, const QRectF& rect) {
  QChartView::drawForeground(painter, rect);
  if (!at_ || !shown_) return;
  const PlotPosition p = PositionOf(*shown_, Plot(), shown_->series[at_->series].points[at_->point]);
  painter->setPen(QPen(QColor(0xC0, 0x39, 0x2B), 2.0));
  painter->setBrush(Qt::NoBrush);
  painter->drawEllipse(QPointF(p.x, p.y) + sceneRect().topLeft(), kRing, kRing);
}

}  // namespace ormel
