#pragma once

#include <QPalette>

namespace farview
{

/// Dark colours for desktops whose theme has none. Every text keeps `readableContrast` from
/// whatever it stands on, disabled ones included.
QPalette darkPalette();

} // namespace farview
