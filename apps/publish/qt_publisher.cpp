#include "publish/qt_publisher.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/ormel.h"
#include "publish/chart_picture.h"
#include "publish/paged_document.h"
#include "qtdevice/painter_device.h"
#include "qtdevice/write_picture.h"
#include "view/map_output.h"
#include "view/map_view_impl.h"

namespace ormel {
namespace {

constexpr int kDpi = 96;
constexpr QSize kChartFile(900, 650);  ///< pixels of a chart in a file

std::string PngBytes(const QImage& image) {
  if (image.isNull()) return {};
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  return image.save(&buffer, "PNG") ? buffer.data().toStdString() : std::string();
}

}  // namespace

std::string QtPublisher::ChartPng(const Chart& chart, const PictureShape& shape) {
  return PngBytes(ChartImage(chart, QSize(shape.width, shape.height), shape.fineness));
}

std::string QtPublisher::MapPng(const PictureShape& shape, const std::optional<MapRect>& window) {
  const QSize size = QSize(shape.width, shape.height) * shape.fineness;
  QImage image(size, QImage::Format_RGB32);
  if (image.isNull()) return {};
  image.fill(Qt::white);
  QPainter painter(&image);
  const int dpi = static_cast<int>(std::lround(kDpi * shape.fineness * 0.8));  // letters suit a small map
  QPainterDevice device(painter, size, dpi, dpi);
  MapSheet sheet;
  sheet.legend = sheet.scale_bar = sheet.north_arrow = sheet.box = true;
  sheet.legend_corner = LegendCorner::kBeside;
  sheet.window = window;
  const bool drawn = DrawMapOutput(ormel_, view_.state(), device, sheet);
  painter.end();
  return drawn ? PngBytes(image) : std::string();
}

std::string QtPublisher::SaveChart(const Chart& chart, const std::string& path) {
  const PictureSize size{kChartFile.width(), kChartFile.height(), kDpi};
  return WritePainting(path, size, "Ormel chart",
                       [&chart](QPainter& painter) { PaintChart(painter, chart, kChartFile); });
}

std::string QtPublisher::SavePdf(const std::string& html, const PageStyle& style, const std::string& path,
                                 const std::function<bool(double)>& go_on) {
  bool stopped = false;
  const QByteArray bytes = PdfOf(QString::fromStdString(html), style, [&](double part) {
    stopped = !go_on(part);
    return !stopped;
  });
  if (stopped) return {};
  if (bytes.isEmpty())
    return "The document \"" + path + "\" was not written: its pages could not be painted.";
  return SaveDocument(path, bytes);
}

}  // namespace ormel
