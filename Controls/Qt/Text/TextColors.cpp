#include "Controls/Qt/Text/TextColors.h"

#include "Controls/Qt/Darkness.h"

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

// A little more than what is just readable: pages are painted a shade off the palette's colours.
constexpr double secondaryContrast = 6.5;
constexpr double quietest = 0.6; // part of the text's own colour
constexpr double step = 0.05;

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& text, const QColor& ground, double part)
{
    const auto channel = [part](double over, double under) {
        return static_cast<float>(over * part + under * (1.0 - part));
    };
    return QColor::fromRgbF(channel(text.redF(), ground.redF()),
                            channel(text.greenF(), ground.greenF()),
                            channel(text.blueF(), ground.blueF()));
}

/// The toolkit paints the pages of tabs lighter than a dark palette's buttons.
QColor pageColor(const QPalette& palette)
{
    const QColor button = palette.color(QPalette::Active, QPalette::Button);
    return isDark(palette) ? button.lighter(140) : button;
}

double lowestContrast(const QColor& text, const QPalette& palette)
{
    return std::min({contrast(text, palette.color(QPalette::Active, QPalette::Window)),
                     contrast(text, palette.color(QPalette::Active, QPalette::Base)),
                     contrast(text, pageColor(palette))});
}

} // namespace

double contrast(const QColor& left, const QColor& right)
{
    const auto [darker, lighter] = std::minmax({luminance(left), luminance(right)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor secondaryText(const QPalette& palette)
{
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    for (double part = quietest; part < 1.0; part += step) {
        const QColor color = mixed(text, ground, part);
        if (lowestContrast(color, palette) >= secondaryContrast)
            return color;
    }
    return text;
}

QColor errorText(const QPalette& palette)
{
    return isDark(palette) ? QColor(255, 130, 120) : QColor(176, 0, 32);
}

} // namespace farview
