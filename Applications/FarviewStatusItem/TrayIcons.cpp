#include "Applications/FarviewStatusItem/TrayIcons.h"

#include <QCoreApplication>
#include <QDir>
#include <QPainter>
#include <QPixmap>

namespace farview
{
namespace
{

QString stateName(StatusIcon icon)
{
    switch (icon) {
    case StatusIcon::off:
        return QStringLiteral("off");
    case StatusIcon::on:
        return QStringLiteral("on");
    case StatusIcon::connected:
        return QStringLiteral("connected");
    case StatusIcon::question:
        return QStringLiteral("question");
    case StatusIcon::trouble:
        break;
    }
    return QStringLiteral("trouble");
}

QColor colourFor(StatusIcon icon)
{
    switch (icon) {
    case StatusIcon::off:
        return QColor(0xB8, 0xBC, 0xC2);
    case StatusIcon::on:
        return Qt::white;
    case StatusIcon::connected:
        return QColor(0x78, 0xB4, 0xFF);
    case StatusIcon::question:
        return QColor(0xFF, 0xD4, 0x60);
    case StatusIcon::trouble:
        break;
    }
    return QColor(0xFF, 0x8A, 0x70);
}

/// Where the program's bundle, or the build tree, keeps that; empty when neither does.
QString resourcePath(const QString& name)
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const QString& folder : {u"../Resources/"_qs, u"../share/"_qs}) {
        if (program.exists(folder + name))
            return QDir::cleanPath(program.filePath(folder + name));
    }
    return {};
}

QPixmap coloured(const QPixmap& shape, const QColor& colour)
{
    QPixmap result = shape;
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(result.rect(), colour);
    return result;
}

/// Light, with a dark edge.
QPixmap readableAnywhere(const QPixmap& shape, const QColor& colour)
{
    const QPixmap edge = coloured(shape, QColor(0x20, 0x24, 0x28));
    QPixmap result(shape.size());
    result.fill(Qt::transparent);
    QPainter painter(&result);
    const int step = shape.width() / 22;
    for (int x = -step; x <= step; x += step) {
        for (int y = -step; y <= step; y += step)
            painter.drawPixmap(x, y, edge);
    }
    painter.drawPixmap(0, 0, coloured(shape, colour));
    return result;
}

} // namespace

QString iconNameFor(StatusIcon icon) { return u"farview-"_qs + stateName(icon) + u"-symbolic"_qs; }

QString iconThemePath() { return resourcePath(QStringLiteral("icons")); }

QIcon iconFor(StatusIcon icon)
{
    QIcon result;
    for (const int size : {22, 44}) {
        const QPixmap shape(resourcePath(u"farview/tray/farview-"_qs + stateName(icon) + u'-' +
                                         QString::number(size) + u".png"_qs));
        if (!shape.isNull())
            result.addPixmap(readableAnywhere(shape, colourFor(icon)));
    }
    return result;
}

} // namespace farview
