#include "ormel/icons.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <array>

#include "ormel/qt_text.h"

/// The drawings are in this library, and a program links only what is asked for.  Outside all namespaces, as
/// the toolkit wants it.
static void NeedDrawings() {
  Q_INIT_RESOURCE(ormel);
}

namespace ormel {
namespace {

constexpr auto kInk = "#3b4652";  ///< the colour of the drawings that stands for the text colour
constexpr std::array kSizes = {16, 24, 32, 48, 64, 72, 96, 128};

QByteArray Drawing(const QString& name) {
  NeedDrawings();
  QFile file(QStringLiteral(":/ormel/icons/%1.svg").arg(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QPixmap Rendered(QSvgRenderer& renderer, int size, double opacity) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(opacity);
  renderer.render(&painter);
  return pixmap;
}

QIcon IconFrom(const QByteArray& svg) {
  if (svg.isEmpty()) return {};
  QSvgRenderer renderer(svg);
  QIcon icon;
  for (const int size : kSizes) {
    icon.addPixmap(Rendered(renderer, size, 1.0), QIcon::Normal);
    icon.addPixmap(Rendered(renderer, size, 0.3), QIcon::Disabled);
  }
  return icon;
}

}  // namespace

QIcon ToolIcon(std::string_view name, const QPalette& palette) {
  QByteArray svg = Drawing(ToQString(name));
  svg.replace(kInk, palette.color(QPalette::ButtonText).name().toLatin1());
  return IconFrom(svg);
}

QIcon ProgramIcon() {
  return IconFrom(Drawing(QStringLiteral("ormel")));
}

}  // namespace ormel
