// The drawn icons of the toolbar.
#pragma once

#include <QIcon>
#include <QPalette>
#include <string_view>

namespace ormel {

/// The drawing of that name, its ink in the palette's text colour so that it reads on light
/// and dark grounds.  A name without a drawing gives a null icon.
QIcon ToolIcon(std::string_view name, const QPalette& palette);

/// The program's own icon.
QIcon ProgramIcon();

}  // namespace ormel
