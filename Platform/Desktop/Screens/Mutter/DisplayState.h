#pragma once

#include "Platform/Types/PixelRect.h"

#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace farview
{

// The monitors of GNOME as its window manager, Mutter, tells and takes them.

/// What a monitor says of itself. One that is unplugged and comes back is the same.
struct MonitorId {
    QString connector;
    QString vendor;
    QString product;
    QString serial;

    bool operator==(const MonitorId&) const = default;
};

struct MonitorMode {
    QString id;
    int width = 0; ///< in pixels
    int height = 0;
    double rate = 0;
    double usualScale = 1;
    QList<double> scales; ///< that are possible
    bool isCurrent = false;
};

struct ConnectedMonitor {
    MonitorId id;
    QList<MonitorMode> modes;
    QVariantMap properties;

    /// Null while it is off.
    const MonitorMode* currentMode() const;
};

/// A part of the desktop, and the monitors that show it: several show the same.
struct LogicalMonitor {
    int x = 0; ///< in the desktop's own units
    int y = 0;
    double scale = 1;
    unsigned transform = 0;
    bool isPrimary = false;
    QList<MonitorId> monitors;

    bool operator==(const LogicalMonitor&) const = default;
};
using DisplayLayout = QList<LogicalMonitor>;

struct DisplayState {
    /// Another one each time that monitors come, go or get other modes; Mutter then arranges them
    /// by itself.
    unsigned serial = 0;
    QList<ConnectedMonitor> monitors;
    DisplayLayout layout;
    /// Whether a monitor of twice the scale takes half the room.
    bool isScaled = false;

    /// Null when there is no such monitor.
    const ConnectedMonitor* monitor(const MonitorId& id) const;
};

/// Nothing when the message is anything else.
std::optional<DisplayState> displayStateIn(const QDBusMessage& reply);

/// The arguments that ask for a layout, for now and not for ever, where the state has that serial.
QVariantList layoutRequest(unsigned serial, const DisplayState& state, const DisplayLayout& layout);

/// A monitor with a current mode of that size that was not there before.
const ConnectedMonitor* newMonitor(const DisplayState& before, const DisplayState& now, int width,
                                   int height);

/// What a part shows of the desktop, in its own units; empty when its monitor is off.
PixelRect areaOf(const DisplayState& state, const LogicalMonitor& part);
/// The same for each part of a layout, the primary one first.
std::vector<PixelRect> areasOf(const DisplayState& state, const DisplayLayout& layout);
/// The part that the monitor shows; null when it is off.
const LogicalMonitor* shownBy(const DisplayLayout& layout, const MonitorId& id);
DisplayLayout without(DisplayLayout layout, const MonitorId& id);
/// With one part that is the primary one: Mutter wants that.
DisplayLayout withPrimary(DisplayLayout layout);
/// Whether Mutter accepts a monitor there: over none of the others, and at the side of one, if
/// there are any.
bool standsWell(const PixelRect& area, const std::vector<PixelRect>& others);
/// The same for each of them among the others.
bool isPossible(const std::vector<PixelRect>& areas);
/// As Mutter arranges monitors by itself.
bool isOneRow(const DisplayLayout& layout);
/// In whatever order.
bool isSameLayout(const DisplayLayout& left, const DisplayLayout& right);
/// Whether the same monitors show something, wherever.
bool haveSameMonitors(const DisplayLayout& left, const DisplayLayout& right);
/// The upper right corner of what is furthest to the right.
PixelPoint besideEverything(const std::vector<PixelRect>& areas);
/// Two scales are the same when they differ by less.
constexpr double scaleAccuracy = 0.01;
/// The one that is wanted, where the mode has it; else the mode's usual one.
double possibleScale(const MonitorMode& mode, double wanted);

} // namespace farview
