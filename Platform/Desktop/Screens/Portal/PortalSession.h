#pragma once

#include "Platform/Desktop/Screens/PipeWireStream.h"
#include "Platform/Desktop/Screens/Portal/PortalMemory.h"
#include "Platform/Desktop/Screens/Portal/PortalOffer.h"
#include "Platform/Desktop/Screens/StreamInput.h"

#include <QObject>
#include <QVariantMap>

#include <functional>
#include <string>

namespace farview
{

/// What a portal shows.
struct PortalStream {
    PipeWireStream::Source source;
    /// What it shows of the desktop, in the desktop's own units, where the portal says it.
    std::optional<PixelRect> area;
    PortalPlan plan;
};

/// A session at the desktop's portal that shows one monitor, and takes input for it if that was
/// wished and allowed. The user may be asked, and has all the time he wants. The destructor ends
/// the session and takes the question back; so does the portal when our connection to the bus ends.
/// Main thread only.
class PortalSession : public QObject, public StreamControl
{
    Q_OBJECT

public:
    /// Called on a later turn.
    struct Events {
        std::function<void()> asks; ///< from now on the user may be asked
        std::function<void(PortalStream stream)> started;
        std::function<void(ScreenObstacle reason)> ended; ///< or could not begin
    };

    PortalSession(SessionBus& bus, PortalMemory memory, Events events);
    ~PortalSession() override { stop(); }

    /// Once. The portal may remember what the user allows under that name.
    void begin(const std::string& name, bool wantsInput);
    /// Ends it; nothing is told any more.
    void stop();

    InputAbilities inputAbilities() const override;
    QVariant streamName() const override { return mNode; }
    void notify(const char* member, const QVariantList& arguments) override;
    void settle(std::function<void()> then) override;

private Q_SLOTS:
    void noticeResponse(unsigned code, const QVariantMap& results, const QDBusMessage& message);
    void noticeClosing(const QVariantMap& details, const QDBusMessage& message);
    void noticeOwner();

private:
    using Next = void (PortalSession::*)(const QVariantMap& results);

    void follow(const PortalOffer& offer, bool wantsInput);
    void listenTo(const QString& path, const QString& interface, const char* signal,
                  const char* slot);
    QString newPath(const char* kind, QString* token) const;
    void request(const QString& interface, const char* member, const QVariantList& arguments,
                 QVariantMap options, Next next);
    void create();
    void selectDevices(const QVariantMap& results);
    void selectSources(const QVariantMap& results);
    void start(const QVariantMap& results);
    void useStart(const QVariantMap& results);
    void openRemote(std::optional<PixelRect> area);
    QVariantMap lasting(QVariantMap options) const;
    const QString& interface() const;
    void close();
    void fail(ScreenObstacle reason);
    void end(ScreenObstacle reason);

    SessionBus& mBus;
    PortalMemory mMemory;
    Events mEvents;
    std::string mName;
    QString mOwner; ///< the portal's own name on the bus
    PortalPlan mPlan;
    std::string mWord;
    QString mSession;
    QString mRequest; ///< that the portal has not answered
    Next mNext = nullptr;
    unsigned mDevices = 0; ///< that were granted
    unsigned mNode = 0;
    bool mIsStarted = false;
    bool mIsOver = false;
};

} // namespace farview
