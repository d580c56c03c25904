#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Screens/Mutter/DisplayState.h"
#include "Platform/RunLoop.h"

#include <QObject>

#include <functional>
#include <optional>

namespace farview
{

/// Asks for a layout of the monitors of that state.
QDBusMessage layoutCall(const DisplayState& state, const DisplayLayout& layout);

/// Asks Mutter for the state of the monitors, from the first time on whenever that changes, and
/// asks it to change the layout. Main thread only.
class DisplayConfig : public QObject
{
    Q_OBJECT

public:
    /// Null when Mutter does not tell.
    using Use = std::function<void(const DisplayState* state)>;

    /// `use` is called on a later turn with each state.
    DisplayConfig(SessionBus& bus, Use use);

    /// Asks for the state now.
    Q_SLOT void ask();
    /// Asks for the first of these layouts that Mutter accepts; whatever becomes of it, asks for
    /// the state then. `state` is what they were made from.
    void apply(const DisplayState& state, const QList<DisplayLayout>& choices);
    /// Whether a layout was asked for and Mutter has not answered.
    bool isApplying() const { return mIsApplying; }

private:
    void take(const QDBusMessage& reply);
    void listenTo(const QString& owner);

    SessionBus& mBus;
    Use mUse;
    QString mOwner;
    bool mIsAsking = false;
    bool mAskAgain = false; ///< something changed meanwhile
    bool mIsApplying = false;
};

/// Tells layouts that Mutter made from those that the user wanted. Mutter arranges monitors by
/// itself when some have come, gone or changed: at once or some time later, all in one row, and
/// tells of it as of any change.
class LayoutJudge
{
public:
    /// Until Mutter has arranged monitors by itself, on a computer that is busy.
    static constexpr Duration longestDelay{10.0};

    bool isMutters(const DisplayState& state, Duration now);
    /// Whether to ask once more for another one: not for ever where that is refused. Counts.
    bool mayReplace() { return mTries++ < mostTries; }

private:
    static constexpr int mostTries = 4;

    std::optional<unsigned> mSerial;
    Duration mEnd{0};
    int mTries = 0;
};

} // namespace farview
