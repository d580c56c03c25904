#include "Platform/Desktop/Looks/TrayWatcher.h"

#include <QDBusVariant>

#include <utility>

namespace farview
{
namespace
{

const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

QString nameOfWatcher() { return QString::fromLatin1(TrayWatcher::watcherName); }

} // namespace

TrayWatcher::TrayWatcher(SessionBus& bus, Changed changed)
    : mBus(bus), mChanged(std::move(changed)),
      mWatcher(bus, watcherName, [this](bool isThere) { watcherChanged(isThere); })
{
    connect(&mBus, &SessionBus::connected, this, &TrayWatcher::listenForHosts);
    listenForHosts();
}

void TrayWatcher::listenForHosts()
{
    auto connection = mBus.connection();
    if (!connection.isConnected())
        return;
    // From whomever they come: naming the sender would mean to wait for the bus.
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        connection.connect(QString(), watcherPath, nameOfWatcher(), QString::fromLatin1(signal),
                           this, SLOT(askForHosts()));
}

void TrayWatcher::watcherChanged(bool isThere)
{
    mWatcherIsThere = isThere;
    if (isThere)
        askForHosts();
    else
        tell(BusTray::none);
}

void TrayWatcher::askForHosts()
{
    auto call = QDBusMessage::createMethodCall(nameOfWatcher(), watcherPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << nameOfWatcher() << QStringLiteral("IsStatusNotifierHostRegistered");
    mBus.ask(call, this, [this](const QDBusMessage& reply) {
        // One that cannot tell is taken for one that shows.
        const bool isShown = reply.signature() != u"v" ||
                             reply.arguments().at(0).value<QDBusVariant>().variant().toBool();
        if (mWatcherIsThere)
            tell(isShown ? BusTray::shown : BusTray::listOnly);
    });
}

void TrayWatcher::tell(BusTray tray)
{
    if (std::exchange(mTold, tray) != tray)
        mChanged(tray);
}

} // namespace farview
