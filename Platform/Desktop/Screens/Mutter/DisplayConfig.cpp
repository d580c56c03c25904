#include "Platform/Desktop/Screens/Mutter/DisplayConfig.h"

#include <memory>
#include <utility>

namespace farview
{
namespace
{

/// Until Mutter has arranged monitors by itself, on a computer that is busy.
constexpr Duration longestDelay{10.0};

const QString service = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString path = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString staleState = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

QDBusMessage callOf(const char* member)
{
    auto call = QDBusMessage::createMethodCall(service, path, service, QLatin1String(member));
    call.setAutoStartService(false);
    return call;
}

QDBusMessage requestOf(unsigned serial, const DisplayState& state, const DisplayLayout& layout)
{
    auto call = callOf("ApplyMonitorsConfig");
    call.setArguments(layoutRequest(serial, state, layout));
    return call;
}

/// Replaces Mutter's layouts for a while. Deletes itself.
class LayoutKeeper : public QObject
{
public:
    LayoutKeeper(RunLoop& loop, SessionBus& bus, MonitorId ours, DisplayLayout layout)
        : QObject(&bus), mLoop(loop), mOurs(std::move(ours)), mLayout(std::move(layout)),
          mDisplays(bus, [this](const auto* state) { useState(state); })
    {
        loop.performAfterDelay(longestDelay, mLife, [this] { deleteLater(); });
        mDisplays.ask();
    }

private:
    void useState(const DisplayState* state)
    {
        if (state && !state->monitor(mOurs) && mJudge.isMutters(*state, mLoop.now()) &&
            haveSameMonitors(state->layout, mLayout) && !isSameLayout(state->layout, mLayout) &&
            mJudge.mayReplace())
            mDisplays.apply(*state, {mLayout});
    }

    RunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    MonitorId mOurs;
    DisplayLayout mLayout;
    LayoutJudge mJudge;
    DisplayConfig mDisplays;
};

} // namespace

DisplayConfig::DisplayConfig(SessionBus& bus, Use use) : mBus(bus), mUse(std::move(use)) {}

void DisplayConfig::ask()
{
    // What is told while a layout is being made may be from before, and is asked for afterwards.
    if (mIsApplying)
        return;
    mAskAgain = mIsAsking;
    if (!std::exchange(mIsAsking, true))
        mBus.ask(callOf("GetCurrentState"), this, [this](const auto& reply) { take(reply); });
}

void DisplayConfig::take(const QDBusMessage& reply)
{
    mIsAsking = false;
    listenTo(reply.service());
    if (mIsApplying)
        return;
    if (std::exchange(mAskAgain, false))
        return ask();
    const auto state = displayStateIn(reply);
    mUse(state ? &*state : nullptr);
}

/// To Mutter's own name on the bus, which only its answer tells.
void DisplayConfig::listenTo(const QString& owner)
{
    if (owner.isEmpty() || std::exchange(mOwner, owner) == owner)
        return;
    mBus.connection().connect(mOwner, path, service, QStringLiteral("MonitorsChanged"), this,
                              SLOT(ask()));
}

void DisplayConfig::apply(const DisplayState& state, const QList<DisplayLayout>& choices)
{
    mIsApplying = true;
    mBus.ask(requestOf(state.serial, state, choices.first()), this,
             [this, state, choices](const QDBusMessage& reply) {
                 // Where another change came first, the layout may still be possible.
                 const bool isRefused =
                     reply.type() != QDBusMessage::ReplyMessage && reply.errorName() != staleState;
                 if (isRefused && choices.size() > 1)
                     return apply(state, choices.mid(1));
                 mIsApplying = false;
                 ask();
             });
}

bool LayoutJudge::isMutters(const DisplayState& state, Duration now)
{
    if (mSerial == state.serial)
        return now < mEnd && isOneRow(state.layout);
    mSerial = state.serial;
    mEnd = now + longestDelay;
    mTries = 0;
    return true;
}

void restoreLayout(RunLoop& loop, SessionBus& bus, const DisplayState& last, const MonitorId& ours,
                   const DisplayLayout& layout)
{
    // For a program that ends now. It may come too early: then Mutter arranges them once more.
    bus.send(requestOf(last.serial + 1, last, layout));
    new LayoutKeeper(loop, bus, ours, layout);
}

} // namespace farview
