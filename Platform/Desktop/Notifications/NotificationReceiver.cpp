#include "Platform/Desktop/Notifications/NotificationReceiver.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Notifications/NotificationMessage.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <unistd.h>

#include <optional>
#include <utility>

namespace farview
{
namespace
{

constexpr int lookUpLimit = 1000; // milliseconds
constexpr std::size_t mostWaiting = 10'000;
constexpr std::size_t mostSenders = 1000;

} // namespace

NotificationReceiver::NotificationReceiver(QDBusConnection connection, RateLimitedLog& log,
                                           Deliver deliver)
    : mConnection(std::move(connection)), mLog(log), mDeliver(std::move(deliver))
{
    mSenders[mConnection.baseService()] = Sender::sameUser;
}

void NotificationReceiver::subscribe(const std::string& name)
{
    mConnection.connect(QString(), NotificationMessage::path(), NotificationMessage::interface(),
                        NotificationMessage::member(), {QString::fromStdString(name)}, QString(),
                        this, SLOT(receive(QDBusMessage)));
}

void NotificationReceiver::unsubscribe(const std::string& name)
{
    mConnection.disconnect(QString(), NotificationMessage::path(), NotificationMessage::interface(),
                           NotificationMessage::member(), {QString::fromStdString(name)}, QString(),
                           this, SLOT(receive(QDBusMessage)));
}

void NotificationReceiver::receive(const QDBusMessage& message)
{
    std::string reason;
    auto posted = NotificationMessage::decoded(message, reason);
    if (posted && mArrived.size() >= mostWaiting)
        reason = "too many are waiting";
    if (!reason.empty()) {
        mLog.warn("Dropped a notification from " + message.service().toStdString() + ": " + reason);
        return;
    }
    mArrived.push_back({message.service(), std::move(*posted)});
    deliverArrived();
}

void NotificationReceiver::deliverArrived()
{
    while (!mArrived.empty() && !mLookingUp) {
        const auto known = mSenders.find(mArrived.front().sender);
        if (known == mSenders.end())
            lookUp(mArrived.front().sender);
        else
            deliverOne(known->second);
    }
}

void NotificationReceiver::deliverOne(Sender sender)
{
    auto arrived = std::move(mArrived.front());
    mArrived.pop_front();
    if (sender == Sender::otherUser) {
        mLog.warn("Dropped a notification from " + arrived.sender.toStdString() +
                  ": it runs as another user");
        return;
    }
    if (sender == Sender::gone)
        mSenders.erase(arrived.sender);
    mDeliver(std::move(arrived.posted));
}

void NotificationReceiver::lookUp(const QString& sender)
{
    mLookingUp = true;
    auto call = SessionBus::busCall(QStringLiteral("GetConnectionUnixUser"));
    call << sender;
    auto* watcher = new QDBusPendingCallWatcher(mConnection.asyncCall(call, lookUpLimit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, sender, watcher] {
        const QDBusPendingReply<uint> reply = *watcher;
        watcher->deleteLater();
        forgetSendersWhenMany();
        if (reply.isError())
            mSenders[sender] = Sender::gone;
        else
            mSenders[sender] = reply.value() == geteuid() ? Sender::sameUser : Sender::otherUser;
        mLookingUp = false;
        deliverArrived();
    });
}

void NotificationReceiver::forgetSendersWhenMany()
{
    if (mSenders.size() < mostSenders)
        return;
    mSenders.clear();
    mSenders[mConnection.baseService()] = Sender::sameUser;
}

} // namespace farview
