#pragma once

#include "Applications/FarviewStatusItem/ClassicTray.h"
#include "Applications/FarviewStatusItem/StatusNotifierItem.h"
#include "Platform/Desktop/BusNameWatcher.h"
#include "Platform/Log.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace farview
{

/// Shows the status item in the desktop's tray, whichever there is and whenever it comes: over the
/// bus where somebody shows items of the StatusNotifierItem kind, else in a classic tray. While
/// there is none it waits, and says so once in the log. Main thread only.
class Tray : public QObject
{
    Q_OBJECT

public:
    /// The references must outlive this.
    Tray(SessionBus& bus, Log& log, std::function<void()> activated);

    void show(const StatusItemDisplay& display);

private Q_SLOTS:
    void hostRegistered() { hostsChanged(true); }
    void hostUnregistered() { askForHosts(); }

private:
    void watcherChanged(bool isThere);
    void listenForHosts();
    void askForHosts();
    void hostsChanged(bool areThere);
    void useClassicTray();

    SessionBus& mBus;
    Log& mLog;
    StatusItemDisplay mDisplay;
    StatusNotifierItem mItem;
    std::optional<ClassicTray> mClassic;
    BusNameWatcher mWatcher;
    bool mWatcherIsThere = false;
    bool mHasSaidNone = false;
};

} // namespace farview
