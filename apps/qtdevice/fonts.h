// The fonts a project names, on a machine that has others.
#pragma once

#include <QFont>
#include <string_view>

namespace ormel {

/// A font of the named family or of the nearest one that is installed.  The caller sets the size.
QFont MapFont(std::string_view family, bool bold, bool italic);

}  // namespace ormel
