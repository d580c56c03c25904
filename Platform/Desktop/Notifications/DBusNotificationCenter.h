#pragma once

#include "Platform/Desktop/Bus/RateLimitedLog.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Notifications/NotificationDelivery.h"
#include "Platform/Desktop/Notifications/NotificationReceiver.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Types/Observers.h"

#include <QObject>

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace farview
{

/// The distributed centre on the session bus. Works without a bus too: posts are lost then, and
/// observers are subscribed when it appears. Main thread only.
class DBusNotificationCenter final : public QObject, public DistributedNotificationCenter
{
    Q_OBJECT

public:
    /// `bus`, `runLoop` and `log` must outlive the centre.
    DBusNotificationCenter(SessionBus& bus, RunLoop& runLoop, Log& log);

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
    void beginReceiving();
    void deliver(PostedNotification posted);
    void subscribe(const std::string& name);
    void unsubscribeUnobserved();

    SessionBus& mBus;
    RateLimitedLog mLog;
    NotificationDelivery mDelivery;
    std::unique_ptr<NotificationReceiver> mReceiver;
    std::set<std::string> mSubscribed;
    Observers<> mReconnectionObservers;
};

} // namespace farview
