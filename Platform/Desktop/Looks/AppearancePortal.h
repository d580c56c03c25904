#pragma once

#include "Platform/Types/AppearancePreferences.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QObject>

#include <functional>

namespace farview
{

/// Asks the desktop's settings portal what the user wants of the looks of programs, and again
/// whenever the portal says that something changed. Never waits for it. Where there is no portal
/// nothing is ever told. Main thread only.
class AppearancePortal : public QObject
{
    Q_OBJECT

public:
    using Changed = std::function<void(const AppearancePreferences&)>;

    /// Asks at once. `changed` is called, on a later turn, with what the first answer says, then
    /// with each that differs from the one before.
    AppearancePortal(const QDBusConnection& bus, Changed changed);

    /// Tells the answer already now if it is here: a window that is about to be shown then has the
    /// right colours from its first picture on.
    void tellWhatIsHere();

private Q_SLOTS:
    void noticeChange(const QString& area);

private:
    void ask();
    void takeAnswer();
    void tell(const AppearancePreferences& preferences);

    QDBusConnection mBus;
    Changed mChanged;
    QDBusPendingCallWatcher* mQuestion = nullptr; ///< under way
    bool mAskAgain = false;                       ///< something changed meanwhile
    AppearancePreferences mTold;                  ///< what holds where nothing is said
};

} // namespace farview
