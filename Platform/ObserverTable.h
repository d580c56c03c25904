#pragma once

#include "Platform/NotificationCenter.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// Whether two weak references name the same object, also once that object is gone.
template <typename Left, typename Right>
bool isSameObject(const std::weak_ptr<Left>& left, const std::weak_ptr<Right>& right)
{
    return !left.owner_before(right) && !right.owner_before(left);
}

/// The registrations of a notification centre, in the order in which they were made. `ObjectKey` is
/// how the centre names a poster; a default-made key stands for any poster.
template <typename ObjectKey> class ObserverTable
{
public:
    void add(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
             ObjectKey object)
    {
        mRegistrations.push_back(std::make_shared<Registration>(
            Registration{std::move(observer), std::move(handler), std::move(name), object, true}));
    }

    void remove(const std::weak_ptr<void>& observer)
    {
        removeIf([&](const Registration& each) { return isSameObject(each.observer, observer); });
    }

    void remove(const std::weak_ptr<void>& observer, const std::string& name,
                const ObjectKey& object)
    {
        removeIf([&](const Registration& each) {
            return isSameObject(each.observer, observer) && each.name == name &&
                   (object == ObjectKey{} || each.object == object);
        });
    }

    /// Calls every handler that is registered now and still is when its turn comes.
    void deliver(const Notification& notification, const ObjectKey& object)
    {
        const auto snapshot = mRegistrations;
        for (const auto& each : snapshot) {
            if (each->name != notification.name())
                continue;
            if (each->object != ObjectKey{} && each->object != object)
                continue;
            const auto observer = each->observer.lock();
            if (observer && each->registered)
                each->handler(notification);
        }
        removeIf([](const Registration& each) { return each.observer.expired(); });
    }

    /// Whether anyone alive observes that name.
    bool observes(const std::string& name) const
    {
        return std::any_of(mRegistrations.begin(), mRegistrations.end(), [&](const auto& each) {
            return each->name == name && !each->observer.expired();
        });
    }

    std::size_t size() const { return mRegistrations.size(); }

private:
    struct Registration {
        std::weak_ptr<void> observer;
        NotificationHandler handler;
        std::string name;
        ObjectKey object;
        bool registered;
    };

    template <typename Predicate> void removeIf(Predicate predicate)
    {
        std::erase_if(mRegistrations, [&](const auto& each) {
            if (!predicate(*each))
                return false;
            each->registered = false;
            return true;
        });
    }

    std::vector<std::shared_ptr<Registration>> mRegistrations;
};

} // namespace farview
