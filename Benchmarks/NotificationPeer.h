#pragma once

#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Log.h"
#include "Tests/Support/TestBus.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace farview
{

/// One end of the two ways to tell another process something: the distributed centre, and a D-Bus
/// signal with one text on a connection of its own.
class NotificationPeer : public QObject
{
    Q_OBJECT

public:
    NotificationPeer();

    void post();
    void sendSignal();
    /// Calls `handler` for each of both. Returns when the bus knows that this process listens.
    void listen(std::function<void()> handler);

private Q_SLOTS:
    void signalArrived(const QString& text);

private:
    class SilentLog final : public Log
    {
    public:
        void write(LogLevel /*level*/, std::string_view /*message*/) override {}
    };

    QDBusConnection mBare;
    SilentLog mLog;
    QtRunLoop mRunLoop;
    TestBus mBus{mLog};
    DBusNotificationCenter mCenter{mBus, mRunLoop, mLog};
    std::shared_ptr<void> mObserver = std::make_shared<int>();
    std::function<void()> mHandler;
};

} // namespace farview
