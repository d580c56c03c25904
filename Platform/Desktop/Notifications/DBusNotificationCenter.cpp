#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"

#include "Platform/Desktop/Notifications/NotificationMessage.h"

#include <utility>

namespace farview
{

DBusNotificationCenter::DBusNotificationCenter(SessionBus& bus, RunLoop& runLoop, Log& log)
    : mBus(bus), mLog(log, runLoop),
      mDelivery(runLoop, qEnvironmentVariable("XDG_SESSION_ID").toStdString())
{
    connect(&mBus, &SessionBus::disconnected, this, [this] { mReceiver.reset(); });
    connect(&mBus, &SessionBus::connected, this, [this](bool again) {
        beginReceiving();
        if (again)
            mReconnectionObservers.tell();
    });
    if (mBus.isConnected())
        beginReceiving();
}

void DBusNotificationCenter::addObserver(std::weak_ptr<void> observer, NotificationHandler handler,
                                         std::string name, std::string object)
{
    subscribe(name);
    mDelivery.observers().add(std::move(observer), std::move(handler), std::move(name),
                              std::move(object));
}

void DBusNotificationCenter::removeObserver(const std::weak_ptr<void>& observer)
{
    mDelivery.observers().remove(observer);
    unsubscribeUnobserved();
}

void DBusNotificationCenter::removeObserver(const std::weak_ptr<void>& observer,
                                            const std::string& name, const std::string& object)
{
    mDelivery.observers().remove(observer, name, object);
    unsubscribeUnobserved();
}

void DBusNotificationCenter::postNotificationName(const std::string& name,
                                                  const std::string& object, TextUserInfo userInfo,
                                                  unsigned options)
{
    const PostedNotification posted{name, object, std::move(userInfo), options,
                                    mDelivery.session()};
    if (NotificationMessage::size(posted) > largestNotification)
        mLog.warn("Not posting " + name + ": it is too large");
    else
        mBus.send(NotificationMessage::encoded(posted));
}

void DBusNotificationCenter::setSuspended(bool suspended) { mDelivery.setSuspended(suspended); }

Subscription DBusNotificationCenter::observeReconnection(std::function<void()> action)
{
    return mReconnectionObservers.add(std::move(action));
}

void DBusNotificationCenter::beginReceiving()
{
    mReceiver = std::make_unique<NotificationReceiver>(
        mBus.connection(), mLog, [this](PostedNotification posted) { deliver(std::move(posted)); });
    for (const auto& name : mSubscribed)
        mReceiver->subscribe(name);
}

void DBusNotificationCenter::deliver(PostedNotification posted)
{
    const auto registrations = mDelivery.observers().size();
    mDelivery.receive(std::move(posted));
    // Delivering sorts out the registrations of observers that have died.
    if (mDelivery.observers().size() < registrations)
        unsubscribeUnobserved();
}

void DBusNotificationCenter::subscribe(const std::string& name)
{
    if (mSubscribed.insert(name).second && mReceiver)
        mReceiver->subscribe(name);
}

void DBusNotificationCenter::unsubscribeUnobserved()
{
    std::erase_if(mSubscribed, [this](const std::string& name) {
        if (mDelivery.observers().observes(name))
            return false;
        if (mReceiver)
            mReceiver->unsubscribe(name);
        return true;
    });
}

} // namespace farview
