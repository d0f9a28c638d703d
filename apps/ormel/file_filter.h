// Filters of file dialogs: from pairs "caption|pattern|..." to the toolkit's "caption (pattern)".
#pragma once

#include <QStringList>
#include <string_view>

namespace ormel {

QStringList NameFilters(std::string_view filter);

}  // namespace ormel
