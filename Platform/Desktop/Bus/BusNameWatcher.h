#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// Tells whether a name on the session bus has an owner, now and whenever that changes, across
/// losses of the bus. Ends with its destruction.
class BusNameWatcher : public QObject
{
    Q_OBJECT

public:
    using Changed = std::function<void(bool isOwned)>;

    /// `changed` is called on a later turn with what holds at first, then at each change. `bus`
    /// must outlive this.
    BusNameWatcher(SessionBus& bus, const std::string& name, Changed changed);

private:
    void watch();
    void tell(bool isOwned);

    SessionBus& mBus;
    QString mName;
    Changed mChanged;
    QDBusServiceWatcher mWatcher;
    std::optional<bool> mIsOwned;
    bool mHeardOfAChange = false; ///< since it was asked whether the name has an owner
};

} // namespace farview
