#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Screens/Mutter/DisplayState.h"

#include <QObject>

#include <functional>

namespace farview
{

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
    /// As a last word: after the monitors of that state will have changed once more.
    void applyNext(const DisplayState& state, const DisplayLayout& layout);

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

} // namespace farview
