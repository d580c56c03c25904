#include "Platform/Desktop/Screens/Mutter/DisplayConfig.h"

#include <utility>

namespace farview
{
namespace
{

const QString service = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString path = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString staleState = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

QDBusMessage callOf(const char* member)
{
    auto call = QDBusMessage::createMethodCall(service, path, service, QLatin1String(member));
    call.setAutoStartService(false);
    return call;
}

} // namespace

QDBusMessage layoutCall(const DisplayState& state, const DisplayLayout& layout)
{
    auto call = callOf("ApplyMonitorsConfig");
    call.setArguments(layoutRequest(state.serial, state, layout));
    return call;
}

DisplayConfig::DisplayConfig(SessionBus& bus, Use use) : mBus(bus), mUse(std::move(use)) {}

void DisplayConfig::ask()
{
    // What is told while a layout is being made may be from before, and is asked for afterwards.
    if (mIsApplying)
        return;
    mAskAgain = mIsAsking;
    if (!std::exchange(mIsAsking, true))
        mBus.askForOwner(service, this, [this](const QString& owner) {
            listenTo(owner);
            mBus.ask(callOf("GetCurrentState"), this, [this](const auto& reply) { take(reply); });
        });
}

void DisplayConfig::take(const QDBusMessage& reply)
{
    mIsAsking = false;
    if (mIsApplying)
        return;
    if (std::exchange(mAskAgain, false))
        return ask();
    const auto state = displayStateIn(reply);
    mUse(state ? &*state : nullptr);
}

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
    mBus.ask(layoutCall(state, choices.first()), this,
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

} // namespace farview
