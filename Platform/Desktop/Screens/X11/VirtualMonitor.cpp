#include "Platform/Desktop/Screens/X11/VirtualMonitor.h"

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

/// Nobody else changes anything while it lives.
class ServerGrab
{
public:
    explicit ServerGrab(const RandrServer& server) : mConnection(server.connection())
    {
        xcb_grab_server(mConnection);
    }
    ~ServerGrab()
    {
        xcb_ungrab_server(mConnection);
        xcb_flush(mConnection);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* mConnection;
};

constexpr double framesPerSecond = 60;

/// Reduced blanking as CVT 1.2 describes it: drivers of outputs without a plug take any timing, but
/// programs show the rate that follows from it.
xcb_randr_mode_info_t timing(RandrSize size, const std::string& name)
{
    constexpr double leastBlanking = 460; // microseconds
    const double line = (1e6 / framesPerSecond - leastBlanking) / size.height;
    const int blankLines = std::max(static_cast<int>(leastBlanking / line) + 1, 3 + 8 + 6);
    xcb_randr_mode_info_t mode{};
    const auto set = [](std::uint16_t& field, int value) {
        field = static_cast<std::uint16_t>(value);
    };
    set(mode.width, size.width);
    set(mode.hsync_start, size.width + 48);
    set(mode.hsync_end, size.width + 80);
    set(mode.htotal, size.width + 160);
    set(mode.height, size.height);
    set(mode.vsync_start, size.height + 3);
    set(mode.vsync_end, size.height + 3 + 8);
    set(mode.vtotal, size.height + blankLines);
    mode.dot_clock = static_cast<std::uint32_t>(framesPerSecond * mode.htotal * mode.vtotal);
    mode.mode_flags = XCB_RANDR_MODE_FLAG_HSYNC_POSITIVE | XCB_RANDR_MODE_FLAG_VSYNC_NEGATIVE;
    set(mode.name_len, static_cast<int>(name.size()));
    return mode;
}

const RandrCrtc* crtcShowing(const RandrLayout& layout, RandrNumber output)
{
    const auto found =
        std::find_if(layout.crtcs.begin(), layout.crtcs.end(), [&](const auto& crtc) {
            return crtc.mode != 0 && std::find(crtc.outputs.begin(), crtc.outputs.end(), output) !=
                                         crtc.outputs.end();
        });
    return found != layout.crtcs.end() ? &*found : nullptr;
}

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

/// Takes away what the journal's owner made and nothing shows any more. The screen becomes as small
/// as what is shown allows, but not smaller than it was.
void tidy(RandrServer& server, const MonitorJournal& journal)
{
    const auto layout = server.layout();
    if (!layout)
        return;
    const auto isShown = [&](RandrNumber mode) {
        return std::any_of(layout->crtcs.begin(), layout->crtcs.end(),
                           [&](const auto& crtc) { return crtc.mode == mode; });
    };
    for (const auto& mode : layout->modes) {
        if (mode.name.starts_with(modePrefix(journal.owner)) && !isShown(mode.id))
            destroyMode(server, *layout, mode.id);
    }
    const auto size = united(journal.size, neededSize(*layout));
    if (size != layout->size)
        setSize(server, size, journal);
}

/// A journal may be anybody's writing: it never leads to an output with a plug.
bool isBelievable(const RandrLayout& layout, const MonitorJournal& journal)
{
    return std::any_of(layout.outputs.begin(), layout.outputs.end(), [&](const auto& output) {
        return output.id == journal.output && hasNoPlug(output.name);
    });
}

/// Others may have made another output show the same: that one stays on.
void switchOff(RandrServer& server, const RandrLayout& layout, RandrNumber output)
{
    const auto* shown = crtcShowing(layout, output);
    if (!shown)
        return;
    RandrCrtc rest = *shown;
    std::erase(rest.outputs, output);
    if (rest.outputs.empty())
        rest = {.id = shown->id};
    server.apply(rest, layout.timestamp);
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

std::optional<ScreenObstacle> VirtualMonitor::make(int width, int height)
{
    {
        const ServerGrab grab(mServer);
        const auto layout = mServer.layout();
        if (!layout)
            return ScreenObstacle::gone;
        const auto spare = spareOutput(*layout);
        if (!spare)
            return ScreenObstacle::noSpareOutput;
        mJournal = {static_cast<std::uint32_t>(::getpid()), spare->output, layout->primary,
                    layout->size, millimetresNow(mServer)};
        const RandrCrtc wanted{spare->crtc, rightEdgeWithout(*layout, spare->output), 0, width,
                               height};
        if (!isFree(*layout, spare->output, wanted))
            return ScreenObstacle::tooLarge;
        writeJournal(mServer, mJournal);
        if (!arrange(*layout, wanted)) {
            undoMonitor(mServer);
            return ScreenObstacle::failed;
        }
    }
    askWhatIsConnected(mServer);
    return std::nullopt;
}

bool VirtualMonitor::resize(int width, int height)
{
    const ServerGrab grab(mServer);
    const auto layout = mServer.layout();
    const auto* shown = layout ? crtcShowing(*layout, mJournal.output) : nullptr;
    return shown && arrange(*layout, {shown->id, shown->x, shown->y, width, height});
}

bool VirtualMonitor::place(PixelPoint corner)
{
    const ServerGrab grab(mServer);
    const auto layout = mServer.layout();
    const auto* shown = layout ? crtcShowing(*layout, mJournal.output) : nullptr;
    return shown && arrange(*layout, {shown->id, corner.x, corner.y, shown->width, shown->height});
}

/// From one mode to the next without switching off, so that windows stay where they are.
bool VirtualMonitor::arrange(const RandrLayout& layout, RandrCrtc wanted)
{
    if (!isFree(layout, mJournal.output, wanted))
        return false;
    wanted.mode = modeFor(layout, {wanted.width, wanted.height});
    wanted.outputs = {mJournal.output};
    const auto size = united(layout.size, {wanted.x + wanted.width, wanted.y + wanted.height});
    const bool isArranged = wanted.mode != 0 &&
                            (size == layout.size || setSize(mServer, size, mJournal)) &&
                            mServer.apply(wanted, layout.timestamp);
    tidy(mServer, mJournal);
    return isArranged;
}

/// One of ours that is there already, else a new one; 0 when the server refuses.
RandrNumber VirtualMonitor::modeFor(const RandrLayout& layout, RandrSize size)
{
    for (const auto& mode : layout.modes) {
        if (mode.width == size.width && mode.height == size.height &&
            mode.name.starts_with(modePrefix(mJournal.owner)))
            return mode.id;
    }
    return createMode(size);
}

RandrNumber VirtualMonitor::createMode(RandrSize size)
{
    auto* connection = mServer.connection();
    const auto name =
        modePrefix(mJournal.owner) + std::to_string(size.width) + "x" + std::to_string(size.height);
    const auto cookie = xcb_randr_create_mode(connection, mServer.root(), timing(size, name),
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
    const auto* shown = layout ? crtcShowing(*layout, mJournal.output) : nullptr;
    if (!shown)
        return std::nullopt;
    return ScreenGeometry{pixelPoint(shown->x, shown->y), shown->width, shown->height, 1,
                          framesPerSecond};
}

bool undoMonitor(RandrServer& server)
{
    {
        const ServerGrab grab(server);
        const auto journal = readJournal(server);
        const auto layout = server.layout();
        if (!journal || !layout)
            return layout.has_value();
        if (isBelievable(*layout, *journal)) {
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
    const ServerGrab grab(server);
    return hasOwner(server) || !readJournal(server) || undoMonitor(server);
}

} // namespace farview
