#include "Platform/Desktop/Looks/TrayWatcher.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
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
    connection.connect(nameOfWatcher(), watcherPath, nameOfWatcher(),
                       QStringLiteral("StatusNotifierHostRegistered"), this,
                       SLOT(hostRegistered()));
    connection.connect(nameOfWatcher(), watcherPath, nameOfWatcher(),
                       QStringLiteral("StatusNotifierHostUnregistered"), this, SLOT(askForHosts()));
}

void TrayWatcher::watcherChanged(bool isThere)
{
    mWatcherIsThere = isThere;
    if (isThere)
        askForHosts();
    else
        tell(BusTray::none);
}

void TrayWatcher::hostRegistered()
{
    if (mWatcherIsThere)
        tell(BusTray::shown);
}

void TrayWatcher::askForHosts()
{
    auto call = QDBusMessage::createMethodCall(nameOfWatcher(), watcherPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << nameOfWatcher() << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* answer = new QDBusPendingCallWatcher(mBus.connection().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        // One that cannot tell is taken for one that shows.
        const bool isShown = reply.isError() || reply.value().variant().toBool();
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
