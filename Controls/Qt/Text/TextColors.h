#pragma once

#include <QPalette>

namespace farview
{

/// How far apart two colours are in brightness, 1 (alike) to 21 (black and white), as the Web
/// Content Accessibility Guidelines measure it. Text should keep 4.5 from what it stands on.
double contrast(const QColor& left, const QColor& right);
inline constexpr double readableContrast = 4.5;

/// For what explains rather than says: as quiet as it can be on that palette's grounds and still
/// readable.
QColor secondaryText(const QPalette& palette);
/// A red that can be read on the desktop's own background. Palettes have no word for it.
QColor errorText(const QPalette& palette);

} // namespace farview
