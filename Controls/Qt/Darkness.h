#pragma once

#include <QPalette>

namespace farview
{

/// Whether windows of these colours are dark.
inline bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

} // namespace farview
