#include "publish/chart_picture.h"

#include <QCategoryAxis>
#include <QCoreApplication>
#include <QFont>
#include <QFontMetrics>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPainter>
#include <QScatterSeries>
#include <algorithm>
#include <cmath>

namespace ormel {
namespace {

constexpr QColor kText(0x26, 0x30, 0x3C), kGrid(0xDD, 0xE2, 0xE9), kEdge(0x9A, 0xA4, 0xB2);
constexpr double kMarker = 7.0;
constexpr int kTitlePixels = 15, kTextPixels = 12;

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

QColor ColorOf(Color color) {
  return {RedOf(color), GreenOf(color), BlueOf(color)};
}

QFont Font(int pixels, bool bold) {
  QFont font;
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

/// The ticks carry their own texts, so that digits are chosen in one place.
QAbstractAxis* MakeAxisItem(const ChartAxis& from, std::size_t every) {
  auto* axis = new QCategoryAxis;
  axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  axis->setRange(from.from, from.to);
  axis->setStartValue(from.from);
  // The rounder ones stay: those at whole multiples of the wider step.
  const double step =
      from.ticks.size() > 1 ? (from.ticks[1].at - from.ticks[0].at) * static_cast<double>(every) : 1.0;
  for (const ChartTick& tick : from.ticks)
    if (every == 1 || std::abs(std::remainder(tick.at, step)) < 1e-6 * step)
      axis->append(Text(tick.text), tick.at);
  axis->setTitleText(Text(from.title));
  axis->setTitleFont(Font(kTextPixels, false));
  axis->setLabelsFont(Font(kTextPixels, false));
  axis->setLabelsColor(kText);
  axis->setTitleBrush(kText);
  axis->setGridLinePen(QPen(kGrid, 1.0));
  axis->setLinePen(QPen(kEdge, 1.0));
  return axis;
}

/// Every how many ticks get a text, along a side of `length` pixels.
std::size_t EveryTick(const ChartAxis& axis, double length, bool across) {
  const QFontMetrics metrics(Font(kTextPixels, false));
  double need = metrics.height() * 1.4;
  for (const ChartTick& tick : axis.ticks)
    if (across) need = std::max(need, metrics.horizontalAdvance(Text(tick.text)) * 1.35 + 6.0);
  std::size_t every = 1;
  while (length * static_cast<double>(every) < need * static_cast<double>(axis.ticks.size())) ++every;
  return every;
}

QXYSeries* MakeSeries(const ChartSeries& from) {
  QList<QPointF> points;
  points.reserve(static_cast<qsizetype>(from.points.size()));
  for (const ChartPoint& p : from.points)
    if (std::isfinite(p.x) && std::isfinite(p.y)) points.append({p.x, p.y});
  if (from.mark == ChartMark::kLine) {
    auto* line = new QLineSeries;
    line->setPen(QPen(ColorOf(from.color), 1.4));
    line->replace(points);
    return line;
  }
  auto* scatter = new QScatterSeries;
  scatter->setMarkerShape(QScatterSeries::MarkerShapeCircle);
  scatter->setMarkerSize(kMarker);
  scatter->setColor(ColorOf(from.color));
  scatter->setBorderColor(Qt::white);
  scatter->setPen(QPen(Qt::white, 0.6));
  scatter->replace(points);
  return scatter;
}

}  // namespace

void FillChart(QChart& chart, const Chart& from, QSize size) {
  chart.setAnimationOptions(QChart::NoAnimation);
  chart.setTitle(Text(from.title));
  chart.setTitleFont(Font(kTitlePixels, true));
  chart.setTitleBrush(kText);
  chart.setBackgroundBrush(Qt::white);
  chart.setBackgroundRoundness(0.0);
  chart.setMargins(QMargins(4, 2, 14, 0));
  chart.layout()->setContentsMargins(0, 0, 0, 0);
  chart.setPlotAreaBackgroundVisible(true);
  chart.setPlotAreaBackgroundBrush(Qt::white);
  chart.setPlotAreaBackgroundPen(QPen(kEdge, 1.0));
  constexpr int kBesides = 90;  // pixels of titles, texts and legend
  QAbstractAxis* x = MakeAxisItem(from.x, EveryTick(from.x, std::max(1, size.width() - kBesides), true));
  QAbstractAxis* y = MakeAxisItem(from.y, EveryTick(from.y, std::max(1, size.height() - kBesides), false));
  chart.addAxis(x, Qt::AlignBottom);
  chart.addAxis(y, Qt::AlignLeft);
  for (const ChartSeries& series : from.series) {
    QXYSeries* item = MakeSeries(series);
    item->setName(Text(series.name));
    chart.addSeries(item);
    item->attachAxis(x);
    item->attachAxis(y);
  }
  chart.legend()->setVisible(from.series.size() > 1);
  chart.legend()->setAlignment(Qt::AlignBottom);
  chart.legend()->setFont(Font(kTextPixels, false));
  chart.legend()->setLabelColor(kText);
  chart.legend()->setMarkerShape(QLegend::MarkerShapeFromSeries);
}

void PaintChart(QPainter& painter, const Chart& chart, QSize size) {
  QGraphicsScene scene;
  auto* item = new QChart;
  item->setFlag(QGraphicsItem::ItemClipsChildrenToShape, false);
  FillChart(*item, chart, size);
  scene.addItem(item);  // the scene owns it
  item->resize(size);
  scene.setSceneRect(QRectF(QPointF(0, 0), size));
  item->layout()->activate();
  // What the chart has left for later: without it axes and points are at their first places.
  QCoreApplication::sendPostedEvents();
  painter.setRenderHint(QPainter::Antialiasing);
  scene.render(&painter, QRectF(QPointF(0, 0), size), scene.sceneRect(), Qt::IgnoreAspectRatio);
}

QImage ChartImage(const Chart& chart, QSize size, double fineness) {
  QImage image(size * fineness, QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.scale(fineness, fineness);
  PaintChart(painter, chart, size);
  painter.end();
  return image;
}

}  // namespace ormel
