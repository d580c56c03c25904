#pragma once

#include "Platform/Desktop/Notifications/NotificationDelivery.h"
#include "Platform/NotificationCenter.h"

#include <memory>

namespace farview
{

/// A distributed centre that reaches this process only: for a program that must not talk to others.
class LoopbackNotificationCenter final : public DistributedNotificationCenter
{
public:
    explicit LoopbackNotificationCenter(RunLoop& runLoop);

    void addObserver(std::weak_ptr<void> observer, NotificationHandler handler, std::string name,
                     std::string object) override;
    void removeObserver(const std::weak_ptr<void>& observer) override;
    void removeObserver(const std::weak_ptr<void>& observer, const std::string& name,
                        const std::string& object) override;
    void postNotificationName(const std::string& name, const std::string& object,
                              TextUserInfo userInfo, unsigned options) override;
    void setSuspended(bool suspended) override;
    Subscription observeReconnection(std::function<void()> action) override;

private:
    RunLoop& mRunLoop;
    NotificationDelivery mDelivery;
    std::shared_ptr<int> mLife = std::make_shared<int>(0);
};

} // namespace farview
