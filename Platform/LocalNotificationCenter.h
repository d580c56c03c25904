#pragma once

#include "Platform/NotificationCenter.h"
#include "Platform/ObserverTable.h"

namespace farview
{

/// The in-process centre. It needs nothing of the desktop, so every platform has this one body.
class LocalNotificationCenter : public NotificationCenter
{
public:
    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     const Object* object) override;
    void removeObserver(const std::weak_ptr<void>& observer) override;
    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const Object* object) override;
    void postNotificationName(const std::string& name, const Object* object,
                              UserInfo userInfo) override;

    /// How many registrations there are.
    std::size_t registrationCount() const { return mObservers.size(); }

private:
    ObserverTable<const Object*> mObservers;
};

} // namespace farview
