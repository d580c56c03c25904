#include "Applications/FarviewStatusItem/StatusNotifierItem.h"

#include "Applications/FarviewStatusItem/TrayIcons.h"
#include "Controls/Qt/Text/PlainText.h"
#include "Platform/Desktop/Looks/TrayWatcher.h"

#include <QCoreApplication>
#include <QImage>
#include <QtEndian>

#include <utility>

namespace farview
{
namespace
{

const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuPath = QStringLiteral("/MenuBar");

std::string itemName()
{
    return "org.kde.StatusNotifierItem-" + std::to_string(QCoreApplication::applicationPid()) +
           "-1";
}

QString statusFor(StatusIcon icon)
{
    return icon == StatusIcon::question ? QStringLiteral("NeedsAttention")
                                        : QStringLiteral("Active");
}

/// Trays take the text of a tool tip for markup.
DBusToolTip toolTipFor(const StatusItemDisplay& display)
{
    return {{},
            {},
            plainLine(display.headline).toHtmlEscaped(),
            plainText(display.sentence).toHtmlEscaped()};
}

DBusIcon pictureOf(const QPixmap& pixmap)
{
    QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    DBusIcon icon{image.width(), image.height(), {}};
    icon.bytes.resize(image.width() * image.height() * 4);
    auto* place = icon.bytes.data();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x, place += 4)
            qToBigEndian<quint32>(image.pixel(x, y), place);
    }
    return icon;
}

DBusIcons picturesOf(const QIcon& icon)
{
    DBusIcons pictures;
    for (const QSize size : icon.availableSizes())
        pictures.append(pictureOf(icon.pixmap(size, 1.0)));
    return pictures;
}

} // namespace

StatusNotifierItem::StatusNotifierItem(SessionBus& bus, std::function<void()> activated)
    : mBus(bus), mActivated(std::move(activated)), mMenu(new DBusMenu(this))
{
    connect(&mBus, &SessionBus::connected, this, &StatusNotifierItem::offer);
    offer();
}

StatusNotifierItem::~StatusNotifierItem()
{
    auto connection = mBus.connection();
    connection.unregisterObject(itemPath);
    connection.unregisterObject(menuPath);
    // A watcher knows from the loss of the name that the item has gone.
    mBus.releaseName(itemName());
}

void StatusNotifierItem::offer()
{
    auto connection = mBus.connection();
    if (!connection.isConnected())
        return;
    constexpr auto exported = QDBusConnection::ExportScriptableSlots |
                              QDBusConnection::ExportScriptableSignals |
                              QDBusConnection::ExportAllProperties;
    connection.registerObject(itemPath, this, exported);
    connection.registerObject(menuPath, mMenu, exported);
    mBus.requestName(itemName(), this, [](bool) {});
}

void StatusNotifierItem::registerWithWatcher()
{
    auto call = QDBusMessage::createMethodCall(QString::fromLatin1(TrayWatcher::watcherName),
                                               QStringLiteral("/StatusNotifierWatcher"),
                                               QString::fromLatin1(TrayWatcher::watcherName),
                                               QStringLiteral("RegisterStatusNotifierItem"));
    call << QString::fromStdString(itemName());
    mBus.send(call);
}

void StatusNotifierItem::show(const StatusItemDisplay& display)
{
    mMenu->setMenu(*display.menu);
    const QString icon = iconNameFor(display.icon);
    if (std::exchange(mIconName, icon) != icon) {
        mIcons = picturesOf(iconFor(display.icon));
        Q_EMIT NewIcon();
        Q_EMIT NewAttentionIcon();
    }
    const QString status = statusFor(display.icon);
    if (std::exchange(mStatus, status) != status)
        Q_EMIT NewStatus(status);
    const auto toolTip = toolTipFor(display);
    const auto before = std::exchange(mToolTip, toolTip);
    if (before.title != toolTip.title || before.text != toolTip.text)
        Q_EMIT NewToolTip();
}

QString StatusNotifierItem::themePath() const { return iconThemePath(); }

QDBusObjectPath StatusNotifierItem::menu() const { return QDBusObjectPath(menuPath); }

void StatusNotifierItem::Activate(int, int) { mActivated(); }

// A tray that shows the menu itself asks for none of these.
void StatusNotifierItem::SecondaryActivate(int, int) {}
void StatusNotifierItem::ContextMenu(int, int) {}
void StatusNotifierItem::Scroll(int, const QString&) {}

} // namespace farview
