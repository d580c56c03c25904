#pragma once

#include <QString>

#include <string_view>

namespace farview
{

/// Foreign text (UTF-8) made fit for showing: control characters and the marks that reverse the
/// reading direction appear as visible signs; what is not UTF-8 appears as the replacement sign.
/// Line breaks stay.
QString plainText(std::string_view text);

/// The same on one line: line breaks become visible signs too.
QString plainLine(std::string_view text);

/// One line for a menu or a button: an ampersand is a letter, not the mark of a shortcut.
QString plainMenuText(std::string_view text);

/// For a tool tip, which would take markup in the text for its own.
QString plainToolTip(std::string_view text);

/// The UTF-8 of a text that the interface shows, without the marks of shortcuts.
std::string withoutShortcut(const QString& text);

} // namespace farview
