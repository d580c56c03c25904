#include "Controls/Qt/DarkPalette.h"

namespace farview
{
namespace
{

// A little blue, so that the greys do not look brown beside the switch.
constexpr QColor window{38, 38, 41};
constexpr QColor base{29, 29, 32};
constexpr QColor alternateBase{45, 45, 49};
constexpr QColor button{44, 44, 48}; // the page of a tab is painted lighter than that
constexpr QColor text{240, 240, 242};
constexpr QColor quietText{172, 172, 178};
constexpr QColor highlight{46, 112, 212};
constexpr QColor disabledHighlight{60, 60, 66};
constexpr QColor link{122, 174, 255};
constexpr QColor visitedLink{196, 160, 255};

void setDisabled(QPalette& palette)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::HighlightedText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, quietText);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, disabledHighlight);
}

void setEdges(QPalette& palette)
{
    palette.setColor(QPalette::Light, QColor(84, 84, 90));
    palette.setColor(QPalette::Midlight, QColor(70, 70, 76));
    palette.setColor(QPalette::Mid, QColor(48, 48, 52));
    palette.setColor(QPalette::Dark, QColor(22, 22, 24));
    palette.setColor(QPalette::Shadow, QColor(8, 8, 9));
}

} // namespace

QPalette darkPalette()
{
    QPalette palette(text, button, QColor(), QColor(), QColor(), text, Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, alternateBase);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::PlaceholderText, quietText);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, visitedLink);
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    setEdges(palette);
    setDisabled(palette);
    return palette;
}

} // namespace farview
