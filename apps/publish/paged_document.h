// A document of HTML on pages.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "core/publisher.h"

namespace ormel {

/// Lays out the document (heads of tables are repeated on each page; parts begin at each <div
/// class="section">) and paints it as PDF.  `go_on` gets the part done, 0 to 1; when it gives false the bytes
/// are empty.
QByteArray PdfOf(const QString& html, const PageStyle& style, const std::function<bool(double)>& go_on);

}  // namespace ormel
