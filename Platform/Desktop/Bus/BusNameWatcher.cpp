#include "Platform/Desktop/Bus/BusNameWatcher.h"

#include <utility>

namespace farview
{

BusNameWatcher::BusNameWatcher(SessionBus& bus, const std::string& name, Changed changed)
    : mBus(bus), mName(QString::fromStdString(name)), mChanged(std::move(changed))
{
    mWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    mWatcher.addWatchedService(mName);
    connect(&mWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                mHeardOfAChange = true;
                tell(!owner.isEmpty());
            });
    connect(&mBus, &SessionBus::connected, this, &BusNameWatcher::watch);
    connect(&mBus, &SessionBus::disconnected, this, [this] { tell(false); });
    watch();
}

void BusNameWatcher::watch()
{
    // Subscribed before the question is asked, so no change can fall in between.
    mWatcher.setConnection(mBus.connection());
    mHeardOfAChange = false;
    mBus.askForOwner(mName, this, [this](const QString& owner) {
        // Answer and change come by different ways: the answer may be the older one.
        if (!mHeardOfAChange)
            tell(!owner.isEmpty());
    });
}

void BusNameWatcher::tell(bool isOwned)
{
    if (std::exchange(mIsOwned, isOwned) != isOwned)
        mChanged(isOwned);
}

} // namespace farview
