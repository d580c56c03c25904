#include "Platform/LocalNotificationCenter.h"

namespace farview
{

void LocalNotificationCenter::addObserver(std::weak_ptr<void> observer, NotificationHandler handler,
                                          std::string name, const Object* object)
{
    mObservers.add(std::move(observer), std::move(handler), std::move(name), object);
}

void LocalNotificationCenter::removeObserver(const std::weak_ptr<void>& observer)
{
    mObservers.remove(observer);
}

void LocalNotificationCenter::removeObserver(const std::weak_ptr<void>& observer,
                                             const std::string& name, const Object* object)
{
    mObservers.remove(observer, name, object);
}

void LocalNotificationCenter::postNotificationName(const std::string& name, const Object* object,
                                                   UserInfo userInfo)
{
    mObservers.deliver(Notification(name, object, std::move(userInfo)), object);
}

} // namespace farview
