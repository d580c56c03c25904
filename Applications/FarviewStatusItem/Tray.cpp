#include "Applications/FarviewStatusItem/Tray.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace farview
{
namespace
{

const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString watcherName = QString::fromLatin1(StatusNotifierItem::watcherName);

} // namespace

Tray::Tray(SessionBus& bus, Log& log, std::function<void()> activated)
    : mBus(bus), mLog(log), mItem(bus, std::move(activated)),
      mWatcher(bus, StatusNotifierItem::watcherName,
               [this](bool isThere) { watcherChanged(isThere); })
{
    connect(&mBus, &SessionBus::connected, this, &Tray::listenForHosts);
    listenForHosts();
}

void Tray::show(const StatusItemDisplay& display)
{
    mDisplay = display;
    mItem.show(display);
    if (mClassic)
        mClassic->show(display);
}

void Tray::watcherChanged(bool isThere)
{
    mWatcherIsThere = isThere;
    if (isThere) {
        mItem.registerWithWatcher();
        askForHosts();
    } else {
        useClassicTray();
    }
}

void Tray::listenForHosts()
{
    auto connection = mBus.connection();
    if (!connection.isConnected())
        return;
    connection.connect(watcherName, watcherPath, watcherName,
                       QStringLiteral("StatusNotifierHostRegistered"), this,
                       SLOT(hostRegistered()));
    connection.connect(watcherName, watcherPath, watcherName,
                       QStringLiteral("StatusNotifierHostUnregistered"), this,
                       SLOT(hostUnregistered()));
}

/// A watcher only keeps a list; a host shows what is on it.
void Tray::askForHosts()
{
    auto call = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                               QStringLiteral("org.freedesktop.DBus.Properties"),
                                               QStringLiteral("Get"));
    call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* answer = new QDBusPendingCallWatcher(mBus.connection().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        // One that cannot tell is taken for one that shows.
        hostsChanged(reply.isError() || reply.value().variant().toBool());
    });
}

void Tray::hostsChanged(bool areThere)
{
    if (!mWatcherIsThere)
        return;
    if (areThere)
        mClassic.reset();
    else
        useClassicTray();
}

void Tray::useClassicTray()
{
    if (!mClassic && ClassicTray::isPossible())
        mClassic.emplace(mDisplay);
    if (!ClassicTray::isThere() && !std::exchange(mHasSaidNone, true))
        mLog.write(LogLevel::info, "This desktop has no tray; waiting for one");
}

} // namespace farview
