#include "Platform/Desktop/Screens/X11/VirtualMonitor.h"

#include "Platform/Desktop/Screens/X11/ModeTiming.h"
#include "Platform/Desktop/Screens/X11/NamedMonitor.h"
#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <unistd.h>
#include <xcb/randr.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace farview
{
namespace
{

bool hasMode(const RandrOutput& output, RandrNumber mode)
{
    return std::find(output.modes.begin(), output.modes.end(), mode) != output.modes.end();
}

/// Of a larger screen, as dense as it was.
RandrSize millimetresOf(RandrSize size, const MonitorJournal& journal)
{
    const auto scaled = [](int side, int before, int millimetres) {
        return static_cast<int>(std::lround(double(millimetres) * side / before));
    };
    return {scaled(size.width, journal.size.width, journal.millimetres.width),
            scaled(size.height, journal.size.height, journal.millimetres.height)};
}

bool setSize(RandrServer& server, RandrSize size, const MonitorJournal& journal)
{
    return server.setScreenSize(size, millimetresOf(size, journal));
}

void destroyMode(const RandrServer& server, const RandrLayout& layout, RandrNumber mode)
{
    for (const auto& output : layout.outputs) {
        if (hasMode(output, mode))
            xcb_randr_delete_output_mode(server.connection(), output.id, mode);
    }
    xcb_randr_destroy_mode(server.connection(), mode);
}

RandrSize extentOf(const RandrCrtc& crtc) { return {crtc.x + crtc.width, crtc.y + crtc.height}; }

std::string nameOf(const MonitorJournal& journal) { return namePrefix(journal.owner) + "monitor"; }

PixelRect areaOf(const RandrCrtc& crtc)
{
    return pixelRect(crtc.x, crtc.y, crtc.width, crtc.height);
}

/// The crtc at the right edge of everything, unless it pans for its user; then the pointer is free
/// already.
RandrNumber crtcToPan(const RandrServer& server, const RandrLayout& layout)
{
    const int edge = rightEdgeWithout(layout, 0);
    for (const auto& crtc : layout.crtcs) {
        if (crtc.mode != 0 && crtc.x + crtc.width == edge)
            return panningOf(server, crtc.id) == PixelRect{} ? crtc.id : 0;
    }
    return 0;
}

/// Takes away what the journal's owner made and nothing shows any more. The screen becomes as small
/// as what is shown allows, but not smaller than it was, nor than told.
void tidy(RandrServer& server, const MonitorJournal& journal, RandrSize least = {})
{
    const auto layout = server.layout();
    if (!layout)
        return;
    const auto isShown = [&](RandrNumber mode) {
        return std::any_of(layout->crtcs.begin(), layout->crtcs.end(),
                           [&](const auto& crtc) { return crtc.mode == mode; });
    };
    for (const auto& mode : layout->modes) {
        if (mode.name.starts_with(namePrefix(journal.owner)) && !isShown(mode.id))
            destroyMode(server, *layout, mode.id);
    }
    const auto size = united(united(journal.size, least), neededSize(*layout));
    if (size != layout->size)
        setSize(server, size, journal);
}

/// A journal may be anybody's writing: it never leads to an output with a plug.
bool isBelievable(const RandrLayout& layout, const MonitorJournal& journal)
{
    const auto* output = withId(layout.outputs, journal.output);
    return output && hasNoPlug(output->name);
}

/// What the other outputs show, the primary one first; what two of them show, once.
std::vector<PixelRect> areasWithout(const RandrLayout& layout, RandrNumber output)
{
    std::vector<PixelRect> areas;
    for (const auto each : onlineOutputs(layout)) {
        const auto area = areaOf(*shownBy(layout, each));
        if (each != output && std::find(areas.begin(), areas.end(), area) == areas.end())
            areas.push_back(area);
    }
    return areas;
}

/// Others may have made another output show the same: that one stays on.
void switchOff(RandrServer& server, const RandrLayout& layout, RandrNumber output)
{
    const auto* shown = shownBy(layout, output);
    if (!shown)
        return;
    RandrCrtc rest = *shown;
    std::erase(rest.outputs, output);
    if (rest.outputs.empty())
        rest = {.id = shown->id};
    server.apply(rest, layout.timestamp);
}

/// What others made of the panning stays.
void removeNamed(const RandrServer& server, const RandrLayout& layout,
                 const MonitorJournal& journal)
{
    const auto* panned = withId(layout.crtcs, journal.panned);
    if (panned && panningOf(server, panned->id) == areaOf(*panned))
        keepPointerIn(server, panned->id);
    if (namedMonitor(server, nameOf(journal)))
        deleteNamedMonitor(server, nameOf(journal));
}

/// Asks the driver what is plugged in. Programs leave out an output that counts as disconnected;
/// one without a plug counts as connected from the first such question on while it is on.
void askWhatIsConnected(const RandrServer& server)
{
    auto* connection = server.connection();
    const XReply<xcb_randr_get_screen_resources_reply_t> reply(xcb_randr_get_screen_resources_reply(
        connection, xcb_randr_get_screen_resources(connection, server.root()), nullptr));
}

bool isDone(xcb_connection_t* connection, xcb_void_cookie_t cookie)
{
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    return !error && xcb_connection_has_error(connection) == 0;
}

RandrSize millimetresNow(const RandrServer& server)
{
    const auto* screen = screenOf(server.connection());
    return {std::max<int>(1, screen->width_in_millimeters),
            std::max<int>(1, screen->height_in_millimeters)};
}

} // namespace

std::optional<ScreenWay> wayToAMonitor(const RandrServer& server, const RandrLayout& layout)
{
    if (spareOutput(layout))
        return ScreenWay::spareOutput;
    if (followsNamedMonitors(windowManagerName(server)))
        return ScreenWay::namedMonitor;
    return std::nullopt;
}

std::optional<ScreenObstacle> VirtualMonitor::make(int width, int height)
{
    {
        const ServerGrab grab(mServer.connection());
        const auto layout = mServer.layout();
        if (!layout)
            return ScreenObstacle::gone;
        if (const auto obstacle = choose(*layout))
            return obstacle;
        const int edge = rightEdgeWithout(*layout, mJournal.output);
        const RandrCrtc wanted{mCrtc, edge, 0, width, height};
        if (!isFree(*layout, mJournal.output, wanted))
            return ScreenObstacle::tooLarge;
        writeJournal(mServer, mJournal);
        if (!arrange(*layout, wanted)) {
            const auto reached = mServer.layout();
            const bool isLarge = reached && reached->size == united(layout->size, extentOf(wanted));
            undoMonitor(mServer);
            return isLarge ? ScreenObstacle::failed : ScreenObstacle::tooLarge;
        }
    }
    askWhatIsConnected(mServer);
    return std::nullopt;
}

std::optional<ScreenObstacle> VirtualMonitor::choose(const RandrLayout& layout)
{
    if (!wayToAMonitor(mServer, layout))
        return ScreenObstacle::noSpareOutput;
    mJournal = {static_cast<std::uint32_t>(::getpid()),
                0,
                0,
                layout.primary,
                layout.size,
                millimetresNow(mServer)};
    if (const auto spare = spareOutput(layout)) {
        mJournal.output = spare->output;
        mCrtc = spare->crtc;
    } else {
        mJournal.panned = crtcToPan(mServer, layout);
    }
    return std::nullopt;
}

bool VirtualMonitor::resize(int width, int height)
{
    const ServerGrab grab(mServer.connection());
    const auto layout = mServer.layout();
    const auto shown = layout ? area(*layout) : std::nullopt;
    return shown && arrange(*layout, {shown->id, shown->x, shown->y, width, height});
}

bool VirtualMonitor::place(PixelPoint corner)
{
    const ServerGrab grab(mServer.connection());
    const auto layout = mServer.layout();
    const auto shown = layout ? area(*layout) : std::nullopt;
    return shown && arrange(*layout, {shown->id, corner.x, corner.y, shown->width, shown->height});
}

/// Where it is; the crtc that shows it, if one does.
std::optional<RandrCrtc> VirtualMonitor::area(const RandrLayout& layout) const
{
    if (mJournal.output != 0) {
        const auto* shown = shownBy(layout, mJournal.output);
        return shown ? std::optional(*shown) : std::nullopt;
    }
    const auto named = namedMonitor(mServer, nameOf(mJournal));
    if (!named)
        return std::nullopt;
    return RandrCrtc{0, named->x, named->y, named->width, named->height};
}

bool VirtualMonitor::arrange(const RandrLayout& layout, const RandrCrtc& wanted)
{
    if (!isFree(layout, mJournal.output, wanted))
        return false;
    const auto size = united(layout.size, extentOf(wanted));
    const bool isNamed = mJournal.output == 0;
    const bool isArranged = (size == layout.size || setSize(mServer, size, mJournal)) &&
                            (isNamed ? name(layout, wanted) : switchOn(layout, wanted));
    tidy(mServer, mJournal, isNamed ? extentOf(wanted) : RandrSize{});
    return isArranged;
}

/// From one mode to the next without switching off, so that windows stay where they are.
bool VirtualMonitor::switchOn(const RandrLayout& layout, RandrCrtc wanted)
{
    wanted.mode = modeFor(layout, {wanted.width, wanted.height});
    wanted.outputs = {mJournal.output};
    return wanted.mode != 0 && mServer.apply(wanted, layout.timestamp);
}

bool VirtualMonitor::name(const RandrLayout& layout, const RandrCrtc& wanted)
{
    freePointer(layout);
    return setNamedMonitor(mServer, nameOf(mJournal), areaOf(wanted));
}

void VirtualMonitor::freePointer(const RandrLayout& layout) const
{
    const auto* panned = withId(layout.crtcs, mJournal.panned);
    if (panned && panningOf(mServer, panned->id) != areaOf(*panned))
        letPointerOut(mServer, *panned);
}

/// Programs that arrange outputs make the screen as small as these need, and their crtcs show other
/// parts then.
void VirtualMonitor::holdAgainstOthers(const RandrLayout& layout, const RandrCrtc& area)
{
    const auto size = united(layout.size, extentOf(area));
    if (size != layout.size)
        setSize(mServer, size, mJournal);
    freePointer(layout);
}

/// One of ours that is there already, else a new one; 0 when the server refuses.
RandrNumber VirtualMonitor::modeFor(const RandrLayout& layout, RandrSize size)
{
    for (const auto& mode : layout.modes) {
        if (mode.width == size.width && mode.height == size.height &&
            mode.name.starts_with(namePrefix(mJournal.owner)))
            return mode.id;
    }
    return createMode(size);
}

RandrNumber VirtualMonitor::createMode(RandrSize size)
{
    auto* connection = mServer.connection();
    const auto name =
        namePrefix(mJournal.owner) + std::to_string(size.width) + "x" + std::to_string(size.height);
    const auto cookie =
        xcb_randr_create_mode(connection, mServer.root(), modeTiming(size, name.size()),
                              static_cast<std::uint32_t>(name.size()), name.data());
    const XReply<xcb_randr_create_mode_reply_t> made(
        xcb_randr_create_mode_reply(connection, cookie, nullptr));
    if (!made)
        return 0;
    const auto added = xcb_randr_add_output_mode_checked(connection, mJournal.output, made->mode);
    return isDone(connection, added) ? made->mode : 0;
}

std::optional<ScreenGeometry> VirtualMonitor::geometry()
{
    const auto layout = mServer.layout();
    const auto shown = layout ? area(*layout) : std::nullopt;
    if (!shown)
        return std::nullopt;
    if (mJournal.output == 0)
        holdAgainstOthers(*layout, *shown);
    return ScreenGeometry{areaOf(*shown),  shown->width,
                          shown->height,   1,
                          framesPerSecond, areasWithout(*layout, mJournal.output)};
}

bool undoMonitor(RandrServer& server)
{
    {
        const ServerGrab grab(server.connection());
        const auto journal = readJournal(server);
        const auto layout = server.layout();
        if (!journal || !layout)
            return layout.has_value();
        if (journal->output == 0) {
            removeNamed(server, *layout, *journal);
            tidy(server, *journal);
        } else if (isBelievable(*layout, *journal)) {
            switchOff(server, *layout, journal->output);
            tidy(server, *journal);
            if (layout->primary == journal->output && journal->primary != journal->output)
                xcb_randr_set_output_primary(server.connection(), server.root(), journal->primary);
        }
        eraseJournal(server);
    }
    askWhatIsConnected(server);
    const auto layout = server.layout();
    return layout && !readJournal(server);
}

bool undoAbandonedMonitor(RandrServer& server)
{
    if (!server.isUsable())
        return false;
    // Nobody becomes the owner between the look and the undoing.
    const ServerGrab grab(server.connection());
    return hasOwner(server) || !readJournal(server) || undoMonitor(server);
}

} // namespace farview
