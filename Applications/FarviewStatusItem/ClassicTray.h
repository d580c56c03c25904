#pragma once

#include "Applications/FarviewStatusItem/StatusMenu.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>

namespace farview
{

/// The status item in a tray of the older kind, which embeds windows (X11). Where there is none
/// it waits for one, without a timer. Not to be made while a StatusNotifierWatcher runs: the
/// toolkit would choose that. Main thread only.
class ClassicTray
{
public:
    explicit ClassicTray(const StatusItemDisplay& display);

    void show(const StatusItemDisplay& display);
    /// Whether this display could have such a tray, now or later.
    static bool isPossible();
    /// Whether such a tray runs now.
    static bool isThere();

    QMenu& menu() { return mMenu; }
    /// Where the icon is on the screen; empty while no tray shows it.
    QRect geometry() const { return mIcon.geometry(); }

private:
    StatusItemDisplay mDisplay;
    QMenu mMenu; // goes after the icon that opens it
    QSystemTrayIcon mIcon;
};

} // namespace farview
