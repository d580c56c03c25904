#pragma once

#include "Platform/Desktop/Bus/RateLimitedLog.h"
#include "Platform/Desktop/Notifications/PostedNotification.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <deque>
#include <functional>
#include <string>
#include <unordered_map>

namespace farview
{

/// Takes notifications from one connection to the bus and lives no longer than that connection, so
/// nothing of a lost bus is left over.
///
/// Malformed ones are dropped with a log line, and so are those whose sender is known to run as
/// another user. A sender that was never seen before is looked up once, without blocking; what
/// arrives meanwhile waits, so the order stays.
class NotificationReceiver : public QObject
{
    Q_OBJECT

public:
    using Deliver = std::function<void(PostedNotification)>;

    NotificationReceiver(QDBusConnection connection, RateLimitedLog& log, Deliver deliver);

    /// Asks the bus for the posts of that name.
    void subscribe(const std::string& name);
    void unsubscribe(const std::string& name);

private Q_SLOTS:
    void receive(const QDBusMessage& message);

private:
    enum class Sender { sameUser, otherUser, gone };
    struct Arrived {
        QString sender;
        PostedNotification posted;
    };

    void deliverArrived();
    void deliverOne(Sender sender);
    void lookUp(const QString& sender);
    void forgetSendersWhenMany();

    QDBusConnection mConnection;
    RateLimitedLog& mLog;
    Deliver mDeliver;
    std::deque<Arrived> mArrived;
    std::unordered_map<QString, Sender> mSenders;
    bool mLookingUp = false;
};

} // namespace farview
