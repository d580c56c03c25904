#include "Benchmarks/NotificationPeer.h"

#include "Common/FVEDistributedNotifications.h"

#include <QDBusMessage>

namespace farview
{
namespace
{

const QString path = QStringLiteral("/com/quillon/Benchmark");
const QString interface = QStringLiteral("com.quillon.Benchmark");
const QString member = QStringLiteral("Told");

} // namespace

NotificationPeer::NotificationPeer()
    : mBare(QDBusConnection::connectToBus(SessionBus::address(), QStringLiteral("bare")))
{
}

void NotificationPeer::post()
{
    mCenter.postNotificationName(kServerConnectedToDevice, "",
                                 {{"DeviceName", "pad.local"}, {"DeviceAddress", "192.168.1.20"}},
                                 DistributedNotificationCenter::deliverImmediately |
                                     DistributedNotificationCenter::postToAllSessions);
}

void NotificationPeer::sendSignal()
{
    mBare.send(QDBusMessage::createSignal(path, interface, member) << QStringLiteral("pad.local"));
}

void NotificationPeer::listen(std::function<void()> handler)
{
    mHandler = std::move(handler);
    mBare.connect({}, path, interface, member, this, SLOT(signalArrived(QString)));
    mCenter.addObserver(
        mObserver, [this](const Notification&) { mHandler(); }, kServerConnectedToDevice, "");
    // The bus handles what a connection sends in order: after an answer the matches are in place.
    mBare.call(SessionBus::busCall(QStringLiteral("GetId")));
    mBus.hasOwner("org.freedesktop.DBus");
}

void NotificationPeer::signalArrived(const QString& /*text*/) { mHandler(); }

} // namespace farview
