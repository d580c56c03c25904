#include "Applications/FarviewStatusItem/TrayIcons.h"

#include <QPainter>
#include <QPixmap>

namespace farview
{
namespace
{

QColor colourFor(StatusIcon icon)
{
    switch (icon) {
    case StatusIcon::off:
        return Qt::gray;
    case StatusIcon::on:
        return Qt::white;
    case StatusIcon::connected:
        return QColor(0x35, 0x84, 0xE4);
    case StatusIcon::trouble:
        break;
    }
    return QColor(0xE0, 0x1B, 0x24);
}

/// A screen on its foot.
QIcon paintedIcon(StatusIcon icon)
{
    QPixmap pixmap(44, 44);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(QPen(Qt::darkGray, 3));
    painter.setBrush(colourFor(icon));
    painter.drawRect(4, 6, 36, 24);
    painter.drawLine(14, 39, 30, 39);
    return QIcon(pixmap);
}

} // namespace

QString iconNameFor(StatusIcon icon)
{
    switch (icon) {
    case StatusIcon::off:
        return QStringLiteral("user-offline");
    case StatusIcon::on:
        return QStringLiteral("video-display");
    case StatusIcon::connected:
        return QStringLiteral("network-transmit-receive");
    case StatusIcon::trouble:
        break;
    }
    return QStringLiteral("dialog-warning");
}

QIcon iconFor(StatusIcon icon) { return QIcon::fromTheme(iconNameFor(icon), paintedIcon(icon)); }

} // namespace farview
