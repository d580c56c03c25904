#include "Platform/Desktop/Notifications/LoopbackNotificationCenter.h"

#include <utility>

namespace farview
{

LoopbackNotificationCenter::LoopbackNotificationCenter(RunLoop& runLoop)
    : mRunLoop(runLoop), mDelivery(runLoop, {})
{
}

void LoopbackNotificationCenter::addObserver(std::weak_ptr<void> observer,
                                             NotificationHandler handler, std::string name,
                                             std::string object)
{
    mDelivery.observers().add(std::move(observer), std::move(handler), std::move(name),
                              std::move(object));
}

void LoopbackNotificationCenter::removeObserver(const std::weak_ptr<void>& observer)
{
    mDelivery.observers().remove(observer);
}

void LoopbackNotificationCenter::removeObserver(const std::weak_ptr<void>& observer,
                                                const std::string& name, const std::string& object)
{
    mDelivery.observers().remove(observer, name, object);
}

void LoopbackNotificationCenter::postNotificationName(const std::string& name,
                                                      const std::string& object,
                                                      TextUserInfo userInfo, unsigned options)
{
    mRunLoop.performAfterDelay(
        Duration::zero(), mLife,
        [this, posted = PostedNotification{name, object, std::move(userInfo), options, {}}] {
            mDelivery.receive(posted);
        });
}

void LoopbackNotificationCenter::setSuspended(bool suspended) { mDelivery.setSuspended(suspended); }

Subscription LoopbackNotificationCenter::observeReconnection(std::function<void()>) { return {}; }

} // namespace farview
