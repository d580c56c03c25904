#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Screens/StreamInput.h"
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
class MutterSession : public QObject, public StreamControl
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

    /// Has Mutter make its devices for input, so that programs know of them before they are used.
    /// To be called when the session was started, before anybody takes its pictures.
    void makeDevices();

    InputAbilities inputAbilities() const override;
    QVariant streamName() const override { return mStream; }
    void notify(const char* member, const QVariantList& arguments) override;
    void settle(std::function<void()> then) override;

private Q_SLOTS:
    void noticeNode(unsigned node);
    void noticeClosing();
    void noticeOwner();

private:
    void call(const QDBusMessage& message, const QString& signature,
              void (MutterSession::*use)(const QDBusMessage& reply));
    void use(const QDBusMessage& reply, const QString& signature,
             void (MutterSession::*use)(const QDBusMessage& reply));
    void create();
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
