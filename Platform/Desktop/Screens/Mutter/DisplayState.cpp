#include "Platform/Desktop/Screens/Mutter/DisplayState.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace farview
{

// Outside of the nameless namespace, where the library finds them.

static const QDBusArgument& operator>>(const QDBusArgument& from, MonitorId& id)
{
    from.beginStructure();
    from >> id.connector >> id.vendor >> id.product >> id.serial;
    from.endStructure();
    return from;
}

static const QDBusArgument& operator>>(const QDBusArgument& from, MonitorMode& mode)
{
    QVariantMap properties;
    from.beginStructure();
    from >> mode.id >> mode.width >> mode.height >> mode.rate >> mode.usualScale >> mode.scales >>
        properties;
    from.endStructure();
    mode.isCurrent = properties.value(QStringLiteral("is-current")).toBool();
    return from;
}

static const QDBusArgument& operator>>(const QDBusArgument& from, ConnectedMonitor& monitor)
{
    from.beginStructure();
    from >> monitor.id >> monitor.modes >> monitor.properties;
    from.endStructure();
    return from;
}

static const QDBusArgument& operator>>(const QDBusArgument& from, LogicalMonitor& part)
{
    QVariantMap properties;
    from.beginStructure();
    from >> part.x >> part.y >> part.scale >> part.transform >> part.isPrimary >> part.monitors >>
        properties;
    from.endStructure();
    return from;
}

namespace
{

/// A monitor of a requested layout: its connector, mode and properties.
struct RequestedMonitor {
    QString connector;
    QString mode;
    QVariantMap properties;
};

/// Part of a requested layout.
struct RequestedPart {
    LogicalMonitor part;
    QList<RequestedMonitor> monitors;
};

constexpr unsigned temporarily = 1;
constexpr unsigned scaledLayout = 1;

QDBusArgument& operator<<(QDBusArgument& to, const RequestedMonitor& monitor)
{
    to.beginStructure();
    to << monitor.connector << monitor.mode << monitor.properties;
    to.endStructure();
    return to;
}

QDBusArgument& operator<<(QDBusArgument& to, const RequestedPart& requested)
{
    const auto& part = requested.part;
    to.beginStructure();
    to << part.x << part.y << part.scale << part.transform << part.isPrimary << requested.monitors;
    to.endStructure();
    return to;
}

// Never called: what is sent is not received.
const QDBusArgument& operator>>(const QDBusArgument& from, RequestedMonitor&) { return from; }
const QDBusArgument& operator>>(const QDBusArgument& from, RequestedPart&) { return from; }

/// What a request must repeat of a monitor's properties, or it is reset.
QVariantMap keptProperties(const QVariantMap& told)
{
    static const std::pair<QString, QString> names[] = {
        {QStringLiteral("is-underscanning"), QStringLiteral("underscanning")},
        {QStringLiteral("color-mode"), QStringLiteral("color-mode")},
        {QStringLiteral("rgb-range"), QStringLiteral("rgb-range")}};
    QVariantMap kept;
    for (const auto& [name, requestName] : names) {
        if (told.contains(name))
            kept[requestName] = told[name];
    }
    return kept;
}

RequestedPart requested(const DisplayState& state, const LogicalMonitor& part)
{
    RequestedPart request{part, {}};
    for (const auto& id : part.monitors) {
        const auto* monitor = state.monitor(id);
        const auto* mode = monitor ? monitor->currentMode() : nullptr;
        if (mode)
            request.monitors.append({id.connector, mode->id, keptProperties(monitor->properties)});
    }
    return request;
}

/// Of a screen; no real one is larger.
std::int16_t shortNumber(int number)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<int>(number, Limits::min(), Limits::max()));
}

} // namespace

PixelRect areaOf(const DisplayState& state, const LogicalMonitor& part)
{
    const auto* monitor = state.monitor(part.monitors.value(0));
    const auto* mode = monitor ? monitor->currentMode() : nullptr;
    if (!mode)
        return {shortNumber(part.x), shortNumber(part.y), 0, 0};
    const double scale = state.isScaled ? part.scale : 1;
    const auto width = shortNumber(static_cast<int>(std::lround(mode->width / scale)));
    const auto height = shortNumber(static_cast<int>(std::lround(mode->height / scale)));
    const bool isTurned = part.transform % 2 != 0;
    return {shortNumber(part.x), shortNumber(part.y), isTurned ? height : width,
            isTurned ? width : height};
}

const MonitorMode* ConnectedMonitor::currentMode() const
{
    const auto found =
        std::find_if(modes.begin(), modes.end(), [](const auto& mode) { return mode.isCurrent; });
    return found == modes.end() ? nullptr : &*found;
}

const ConnectedMonitor* DisplayState::monitor(const MonitorId& id) const
{
    const auto found = std::find_if(monitors.begin(), monitors.end(),
                                    [&](const auto& monitor) { return monitor.id == id; });
    return found == monitors.end() ? nullptr : &*found;
}

std::optional<DisplayState> displayStateIn(const QDBusMessage& reply)
{
    const auto signature =
        QStringLiteral("ua((ssss)a(siiddada{sv})a{sv})a(iiduba(ssss)a{sv})a{sv}");
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != signature)
        return std::nullopt;
    const auto arguments = reply.arguments();
    const auto properties = qdbus_cast<QVariantMap>(arguments.at(3));
    const auto layoutMode = properties.value(QStringLiteral("layout-mode")).toUInt();
    return DisplayState{arguments.at(0).toUInt(),
                        qdbus_cast<QList<ConnectedMonitor>>(arguments.at(1)),
                        qdbus_cast<DisplayLayout>(arguments.at(2)), layoutMode == scaledLayout};
}

QVariantList layoutRequest(unsigned serial, const DisplayState& state, const DisplayLayout& layout)
{
    qDBusRegisterMetaType<RequestedMonitor>();
    qDBusRegisterMetaType<QList<RequestedMonitor>>();
    qDBusRegisterMetaType<RequestedPart>();
    qDBusRegisterMetaType<QList<RequestedPart>>();
    QList<RequestedPart> parts;
    for (const auto& part : layout)
        parts.append(requested(state, part));
    return {serial, temporarily, QVariant::fromValue(parts), QVariantMap()};
}

const ConnectedMonitor* newMonitor(const DisplayState& before, const DisplayState& now, int width,
                                   int height)
{
    const auto found =
        std::find_if(now.monitors.begin(), now.monitors.end(), [&](const auto& monitor) {
            const auto* mode = monitor.currentMode();
            return mode && mode->width == width && mode->height == height &&
                   !before.monitor(monitor.id);
        });
    return found == now.monitors.end() ? nullptr : &*found;
}

const LogicalMonitor* shownBy(const DisplayLayout& layout, const MonitorId& id)
{
    const auto found = std::find_if(layout.begin(), layout.end(),
                                    [&](const auto& part) { return part.monitors.contains(id); });
    return found == layout.end() ? nullptr : &*found;
}

DisplayLayout without(DisplayLayout layout, const MonitorId& id)
{
    for (auto& part : layout)
        part.monitors.removeAll(id);
    layout.removeIf([](const auto& part) { return part.monitors.isEmpty(); });
    return layout;
}

DisplayLayout withPrimary(DisplayLayout layout)
{
    const bool hasOne =
        std::any_of(layout.begin(), layout.end(), [](const auto& part) { return part.isPrimary; });
    if (!hasOne && !layout.isEmpty())
        layout.first().isPrimary = true;
    return layout;
}

bool standsWell(const PixelRect& area, const std::vector<PixelRect>& others)
{
    bool hasNeighbour = others.empty();
    for (const auto& other : others) {
        const int across =
            std::min(area.x + area.width, other.x + other.width) - std::max(area.x, other.x);
        const int down =
            std::min(area.y + area.height, other.y + other.height) - std::max(area.y, other.y);
        if (across > 0 && down > 0)
            return false;
        hasNeighbour = hasNeighbour || (across == 0 && down > 0) || (across > 0 && down == 0);
    }
    return hasNeighbour && area.x >= 0 && area.y >= 0;
}

bool isPossible(const std::vector<PixelRect>& areas)
{
    bool isPossible = true;
    for (std::size_t index = 0; index < areas.size(); ++index) {
        auto others = areas;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(index));
        isPossible = isPossible && standsWell(areas[index], others);
    }
    return isPossible;
}

bool isOneRow(const DisplayLayout& layout)
{
    return std::all_of(layout.begin(), layout.end(), [](const auto& part) { return part.y == 0; });
}

bool isSameLayout(const DisplayLayout& left, const DisplayLayout& right)
{
    return left.size() == right.size() &&
           std::all_of(left.begin(), left.end(),
                       [&](const auto& part) { return right.contains(part); });
}

bool haveSameMonitors(const DisplayLayout& left, const DisplayLayout& right)
{
    const auto isIn = [](const DisplayLayout& layout) {
        return [&layout](const LogicalMonitor& part) {
            return std::all_of(part.monitors.begin(), part.monitors.end(),
                               [&](const auto& id) { return shownBy(layout, id) != nullptr; });
        };
    };
    return std::all_of(left.begin(), left.end(), isIn(right)) &&
           std::all_of(right.begin(), right.end(), isIn(left));
}

std::vector<PixelRect> areasOf(const DisplayState& state, const DisplayLayout& layout)
{
    std::vector<PixelRect> areas;
    for (const auto& part : layout)
        areas.insert(part.isPrimary ? areas.begin() : areas.end(), areaOf(state, part));
    return areas;
}

PixelPoint besideEverything(const std::vector<PixelRect>& areas)
{
    PixelPoint corner;
    for (const auto& area : areas) {
        if (const int edge = area.x + area.width; edge > corner.x)
            corner = {shortNumber(edge), area.y};
    }
    return corner;
}

double possibleScale(const MonitorMode& mode, double wanted)
{
    for (const double scale : mode.scales) {
        if (std::abs(scale - wanted) < scaleAccuracy)
            return scale;
    }
    return mode.usualScale;
}

} // namespace farview
