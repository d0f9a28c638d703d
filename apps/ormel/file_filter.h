// Filters of file dialogs: from pairs "caption|pattern|..." to the toolkit's "caption (pattern)".
#pragma once

#include <QStringList>
#include <string_view>

namespace ormel {

QStringList NameFilters(std::string_view filter);
/// Extension of the first pattern of one of these filters: "svg" of "SVG Drawing (*.svg *.SVG)".
QString SuffixOf(const QString& filter);

}  // namespace ormel
