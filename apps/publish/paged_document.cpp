#include "publish/paged_document.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <vector>

namespace ormel {
namespace {

constexpr int kDpi = 96;              ///< of the layout: a picture's pixel is one of them
constexpr int kFineness = 8;          ///< device pixels for each
constexpr double kFootMm = 8.0;       ///< between the text and the line at the foot
constexpr double kLayoutShare = 0.6;  ///< of the work, until the first page is painted

struct Paper {
  std::string_view name;
  QPageSize::PageSizeId id;
};
constexpr std::array kPapers{Paper{"A4", QPageSize::A4}, Paper{"A3", QPageSize::A3},
                             Paper{"Letter", QPageSize::Letter}, Paper{"Legal", QPageSize::Legal}};

double Pixels(double mm) {
  return mm / 25.4 * kDpi;
}

QPageLayout LayoutOf(const PageStyle& style) {
  QPageSize::PageSizeId id = QPageSize::A4;
  for (const Paper& paper : kPapers)
    if (paper.name == style.paper) id = paper.id;
  return {QPageSize(id), style.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
          QMarginsF(0, 0, 0, 0)};
}

/// A part of the document, laid out by itself: what comes before it costs nothing then, and a part that would
/// begin at the foot of a page begins the next one.
struct Part {
  std::unique_ptr<QTextDocument> document;
  int first_page = 0;  ///< of the whole, from 0
  int pages = 0;
};

/// The parts begin where a section does; each gets the head with its style.
QStringList SectionsOf(const QString& html) {
  const QString mark = QStringLiteral("<div class=\"section\"");
  QStringList sections;
  qsizetype at = html.indexOf(mark);
  if (at < 0) return {html};
  const QString head = html.left(at);
  while (at >= 0) {
    const qsizetype next = html.indexOf(mark, at + mark.size());
    sections.append(head + html.mid(at, next < 0 ? -1 : next - at));
    at = next;
  }
  return sections;
}

/// An empty line as high as what others have taken of the first page.
void LeaveRoom(QTextDocument& document, double height) {
  QTextCursor cursor(&document);
  cursor.insertBlock();
  cursor.movePosition(QTextCursor::Start);
  QTextBlockFormat format;
  format.setLineHeight(height, QTextBlockFormat::FixedHeight);
  cursor.setBlockFormat(format);
}

/// Lays a part out from `taken` pixels below the top of a page; gives the pixels taken of its last page.
double LayOut(Part& part, const QString& html, QSizeF body, double taken) {
  part.document = std::make_unique<QTextDocument>();
  part.document->setDocumentMargin(0);
  part.document->setPageSize(body);
  part.document->setHtml(html);
  if (taken > 0.0) LeaveRoom(*part.document, taken);
  part.pages = part.document->pageCount();
  const QRectF last = part.document->documentLayout()->blockBoundingRect(part.document->lastBlock());
  return std::max(0.0, last.bottom() - (part.pages - 1) * body.height());
}

/// Nothing when `go_on` ends it.
std::vector<Part> LayOutAll(const QString& html, QSizeF body, const std::function<bool(double)>& go_on) {
  constexpr double kLeast = 110.0;  // pixels that a part needs at the foot of a page
  const QStringList sections = SectionsOf(html);
  std::vector<Part> parts;
  double taken = 0.0;
  int page = 0;
  for (const QString& section : sections) {
    if (!go_on(kLayoutShare * static_cast<double>(parts.size()) / static_cast<double>(sections.size())))
      return {};
    if (body.height() - taken < kLeast) {
      taken = 0.0;
      ++page;
    }
    Part& part = parts.emplace_back();
    part.first_page = page;
    taken = LayOut(part, section, body, taken);
    page += part.pages - 1;
  }
  return parts;
}

void PaintPart(QPainter& painter, const Part& part, int page, QSizeF body, double margin) {
  const QRectF shown(0, (page - part.first_page) * body.height(), body.width(), body.height());
  QAbstractTextDocumentLayout::PaintContext context;
  context.palette.setColor(QPalette::Text, QColor(0x1C, 0x24, 0x30));
  context.clip = shown;
  painter.save();
  painter.translate(margin, margin - shown.top());
  // A picture at the head of the next page may begin a fraction of a pixel too early.
  painter.setClipRect(shown.adjusted(0, 0, 0, -1));
  part.document->documentLayout()->draw(&painter, context);
  painter.restore();
}

void PaintFoot(QPainter& painter, const QRectF& foot, const QString& text, int page, int pages) {
  QFont font(QStringLiteral("Liberation Sans"));
  font.setPixelSize(10);
  painter.setFont(font);
  painter.setPen(QColor(0x60, 0x68, 0x74));
  painter.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, text);
  painter.drawText(foot, Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("%1 / %2").arg(page).arg(pages));
}

}  // namespace

QByteArray PdfOf(const QString& html, const PageStyle& style, const std::function<bool(double)>& go_on) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setCreator(QStringLiteral("Ormel"));
  writer.setTitle(QString::fromStdString(style.foot));
  writer.setResolution(kDpi * kFineness);
  writer.setPageLayout(LayoutOf(style));

  const QSizeF paper = writer.pageLayout().fullRect(QPageLayout::Point).size() * kDpi / 72.0;
  const double margin = Pixels(style.margin);
  const QSizeF body(paper.width() - 2 * margin, paper.height() - 2 * margin);
  const std::vector<Part> parts = LayOutAll(html, body, go_on);
  if (parts.empty()) return {};
  const int pages = parts.back().first_page + parts.back().pages;

  QPainter painter(&writer);
  painter.scale(kFineness, kFineness);
  for (int page = 0; page < pages; ++page) {
    if (page > 0) writer.newPage();
    for (const Part& part : parts)
      if (page >= part.first_page && page < part.first_page + part.pages)
        PaintPart(painter, part, page, body, margin);
    PaintFoot(painter, QRectF(margin, margin + body.height(), body.width(), Pixels(kFootMm)),
              QString::fromStdString(style.foot), page + 1, pages);
    if (!go_on(kLayoutShare + (1.0 - kLayoutShare) * (page + 1) / pages)) return {};
  }
  painter.end();
  return buffer.data();
}

}  // namespace ormel
