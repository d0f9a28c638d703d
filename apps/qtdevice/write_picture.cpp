#include "qtdevice/write_picture.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>
#include <algorithm>
#include <array>

#include "qtdevice/painter_device.h"

namespace ormel {
namespace {

using Draw = std::function<void(DrawingDevice&)>;
/// Paints with `fine` pixels of the surface for each asked for.
using Paint = std::function<void(QPainter&, int fine)>;

constexpr int kLargestSide = 32767;  ///< pixels
constexpr int kVectorDpi = 600;

/// How many device pixels of a vector file make one pixel asked for.
int Fineness(int dpi) {
  return std::max(1, (kVectorDpi + dpi - 1) / dpi);
}

/// Runs the drawing on a painter that is already on its surface, `fine` device pixels for each asked for.
void DrawOn(QPainter& painter, const PictureSize& size, int fine, const Draw& draw) {
  QPainterDevice device(painter, QSize(size.width * fine, size.height * fine), size.dpi * fine,
                        size.dpi * fine);
  draw(device);
}

QString WritePng(QIODevice& out, const PictureSize& size, const char*, const Paint& paint) {
  QImage image(size.width, size.height, QImage::Format_RGB32);
  if (image.isNull()) return QStringLiteral("there is not enough memory for a picture of this size");
  image.setDotsPerMeterX(qRound(size.dpi / 0.0254));
  image.setDotsPerMeterY(qRound(size.dpi / 0.0254));
  image.fill(Qt::white);
  QPainter painter(&image);
  paint(painter, 1);
  painter.end();
  return image.save(&out, "PNG") ? QString() : QStringLiteral("the picture could not be written");
}

QString WriteSvg(QIODevice& out, const PictureSize& size, const char* title, const Paint& paint) {
  QSvgGenerator generator;
  generator.setOutputDevice(&out);
  generator.setSize(QSize(size.width, size.height));
  generator.setViewBox(QRect(0, 0, size.width, size.height));
  generator.setResolution(size.dpi);
  generator.setTitle(QString::fromUtf8(title));
  const int fine = Fineness(size.dpi);
  QPainter painter;
  if (!painter.begin(&generator)) return QStringLiteral("the picture could not be written");
  painter.scale(1.0 / fine, 1.0 / fine);
  paint(painter, fine);
  painter.end();
  return {};
}

QString WritePdf(QIODevice& out, const PictureSize& size, const char* title, const Paint& paint) {
  QPdfWriter writer(&out);
  writer.setCreator(QStringLiteral("Ormel"));
  writer.setTitle(QString::fromUtf8(title));
  const int fine = Fineness(size.dpi);
  writer.setResolution(size.dpi * fine);
  const QSizeF points(size.width * 72.0 / size.dpi, size.height * 72.0 / size.dpi);
  writer.setPageSize(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch));
  writer.setPageMargins(QMarginsF(0, 0, 0, 0));
  QPainter painter;
  if (!painter.begin(&writer)) return QStringLiteral("the picture could not be written");
  paint(painter, fine);
  painter.end();
  return {};
}

struct Format {
  const char* extension;
  QString (*write)(QIODevice&, const PictureSize&, const char* title, const Paint&);
};
constexpr std::array kFormats = {Format{"png", WritePng}, Format{"svg", WriteSvg}, Format{"pdf", WritePdf}};

std::string Failure(const QString& path, const QString& why, const char* remedy,
                    const char* what = "picture") {
  return QStringLiteral("The %1 \"%2\" was not written: %3.\n%4")
      .arg(QString::fromUtf8(what), path, why, QString::fromUtf8(remedy))
      .toStdString();
}

/// All of the bytes under the name, or the old file as it was.  The count is looked at because a disk that
/// fills up takes a first part without an error.
std::string SaveWhole(const QString& name, const QByteArray& bytes, const char* what) {
  QSaveFile file(name);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    return Failure(name, file.errorString(), "Choose a folder that exists and that you may write to.", what);
  const bool whole = file.write(bytes) == bytes.size();
  if (!whole) file.cancelWriting();
  if (file.commit() && whole) return {};
  const QString why = file.error() == QFileDevice::NoError ? QStringLiteral("the disk took only a part of it")
                                                           : file.errorString();
  return Failure(name, why, "Make room on the disk or choose another folder.", what);
}

std::string WritePainted(const std::string& path, const PictureSize& size, const char* title,
                         const Paint& paint) {
  const QString name = QString::fromStdString(path);
  const QString extension = QFileInfo(name).suffix().toLower();
  const auto format = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& f) {
    return extension == QLatin1StringView(f.extension);
  });
  if (format == kFormats.end())
    return Failure(name, QStringLiteral("its extension tells no kind of picture"),
                   "Give the name the extension .png, .svg or .pdf.");
  if (size.width < 1 || size.height < 1 || size.dpi < 1 || size.width > kLargestSide ||
      size.height > kLargestSide)
    return Failure(name, QStringLiteral("its size is not possible"),
                   "Choose between 1 and 32767 pixels for the width and the height.");

  QBuffer picture;
  picture.open(QIODevice::WriteOnly);
  const QString failure = format->write(picture, size, title, paint);
  if (!failure.isEmpty()) return Failure(name, failure, "Choose a smaller size.");
  return SaveWhole(name, picture.data(), "picture");
}

}  // namespace

std::string WritePicture(const std::string& path, const PictureSize& size, const Draw& draw) {
  return WritePainted(path, size, "Ormel map",
                      [&](QPainter& painter, int fine) { DrawOn(painter, size, fine, draw); });
}

std::string WritePainting(const std::string& path, const PictureSize& size, const char* title,
                          const std::function<void(QPainter&)>& paint) {
  return WritePainted(path, size, title, [&](QPainter& painter, int fine) {
    painter.scale(fine, fine);
    paint(painter);
  });
}

std::string SaveDocument(const std::string& path, const QByteArray& bytes) {
  return SaveWhole(QString::fromStdString(path), bytes, "document");
}

const char* PictureFilter() {
  return "PNG Picture (*.png)|*.png|SVG Drawing (*.svg)|*.svg|PDF Document (*.pdf)|*.pdf";
}

}  // namespace ormel
