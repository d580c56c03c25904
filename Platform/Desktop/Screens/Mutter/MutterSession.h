#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/VirtualScreens.h"

#include <QObject>
#include <QVariantList>

#include <cstdint>
#include <functional>

namespace farview
{

/// Finds out what the failure of a call to Mutter means.
void findObstacle(SessionBus& bus, QObject* asker, const QDBusMessage& reply,
                  std::function<void(ScreenObstacle)> then);
/// Asks the desktop whether its screen is locked; where nobody knows, it is not.
void askWhetherLocked(SessionBus& bus, QObject* asker, std::function<void(bool isLocked)> then);

/// A session at Mutter that makes one monitor and shows it as a PipeWire node. It is one of remote
/// control, so that input for the monitor can be given, too. The destructor ends it; Mutter ends it
/// when our connection to the bus does. Main thread only.
class MutterSession : public QObject
{
    Q_OBJECT

public:
    /// Called on a later turn.
    struct Events {
        std::function<void()> prepared;
        std::function<void(std::uint32_t node)> started;
        std::function<void(ScreenObstacle reason)> ended; ///< or could not begin
    };

    MutterSession(SessionBus& bus, Events events);
    ~MutterSession() override;

    /// Makes the session.
    void prepare();
    /// Makes the monitor, once it is prepared.
    void start();
    /// Removes the monitor.
    void stop();

    /// The monitor's name in calls, once it is prepared.
    QString streamPath() const { return mStream; }
    /// Tells Mutter what the user did there, after what was told before. Lost unless the session
    /// was started and goes on; a refusal changes nothing.
    void notify(const char* member, const QVariantList& arguments);
    /// Calls that on a later turn, when Mutter has done what it was told before; not once this
    /// object is gone.
    void settle(std::function<void()> then);

private Q_SLOTS:
    void noticeNode(unsigned node);
    void noticeClosing();
    void noticeOwner();

private:
    void call(const QDBusMessage& message, const QString& signature,
              void (MutterSession::*use)(const QDBusMessage& reply));
    void use(const QDBusMessage& reply, const QString& signature,
             void (MutterSession::*use)(const QDBusMessage& reply));
    void useSession(const QDBusMessage& reply);
    void useIdentifier(const QDBusMessage& reply);
    void useScreenCast(const QDBusMessage& reply);
    void useStream(const QDBusMessage& reply);
    void listen();
    void end(ScreenObstacle reason);

    SessionBus& mBus;
    Events mEvents;
    QString mOwner; ///< Mutter's own name on the bus
    QString mSession;
    QString mScreenCast;
    QString mStream;
    bool mIsStopped = false;
};

} // namespace farview
