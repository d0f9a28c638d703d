// The drawn icons of the toolbar.
#pragma once

#include <QIcon>
#include <QPalette>
#include <string_view>

namespace ormel {

/// The icon of a toolbar button by its key, its ink in the palette's text colour so that it reads on light
/// and dark grounds.  A key without a drawing gives a null icon.
QIcon ToolIcon(std::string_view key, const QPalette& palette);

/// The program's own icon.
QIcon ProgramIcon();

}  // namespace ormel
