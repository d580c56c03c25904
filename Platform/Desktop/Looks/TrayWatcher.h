#pragma once

#include "Platform/Desktop/Bus/BusNameWatcher.h"

#include <QObject>

#include <functional>
#include <optional>

namespace farview
{

/// What there is of a tray for status items that come over the bus.
enum class BusTray {
    none,
    listOnly, ///< a watcher keeps the list of items, but no host shows it
    shown,
};

/// Tells which tray of the StatusNotifierItem kind the desktop has, now and whenever that changes.
/// Ends with its destruction. Main thread only.
class TrayWatcher : public QObject
{
    Q_OBJECT

public:
    using Changed = std::function<void(BusTray)>;

    /// The name on the bus of whoever keeps the list of items.
    static constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";

    /// `changed` is called on a later turn with what holds at first, then at each change. `bus`
    /// must outlive this.
    TrayWatcher(SessionBus& bus, Changed changed);

private Q_SLOTS:
    void askForHosts();

private:
    void listenForHosts();
    void watcherChanged(bool isThere);
    void tell(BusTray tray);

    SessionBus& mBus;
    Changed mChanged;
    BusNameWatcher mWatcher;
    bool mWatcherIsThere = false;
    std::optional<BusTray> mTold;
};

} // namespace farview
