#include "Platform/Desktop/Screens/X11/VirtualMonitor.h"

#include "Platform/Desktop/Screens/X11/ModeTiming.h"
#include "Platform/Desktop/Screens/X11/MonitorRemoval.h"
#include "Platform/Desktop/Screens/X11/NamedMonitor.h"
#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <unistd.h>
#include <xcb/randr.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

std::uint32_t processNumber() { return static_cast<std::uint32_t>(::getpid()); }

/// The one whose output it is; null when it is none of ours.
const MonitorJournal* journalOfOutput(const std::vector<MonitorJournal>& journals,
                                      RandrNumber output)
{
    const auto found = std::find_if(journals.begin(), journals.end(), [=](const auto& journal) {
        return output != 0 && journal.output == output;
    });
    return found == journals.end() ? nullptr : &*found;
}

/// The one that pans for our sake already; else the user's furthest to the right, unless it pans
/// for its user: then the pointer is free already.
RandrNumber crtcToPan(const RandrServer& server, const RandrLayout& layout,
                      const std::vector<MonitorJournal>& journals)
{
    for (const auto& journal : journals) {
        if (journal.panned != 0)
            return journal.panned;
    }
    const RandrCrtc* last = nullptr;
    for (const auto output : onlineOutputs(layout)) {
        const auto* shown = shownBy(layout, output);
        if (!journalOfOutput(journals, output) &&
            (!last || extentOf(*shown).width > extentOf(*last).width))
            last = shown;
    }
    return last && panningOf(server, last->id) == PixelRect{} ? last->id : 0;
}

/// Once, what two of them show.
void add(std::vector<PixelRect>& areas, const PixelRect& area)
{
    if (std::find(areas.begin(), areas.end(), area) == areas.end())
        areas.push_back(area);
}

bool isDone(xcb_connection_t* connection, xcb_void_cookie_t cookie)
{
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    return !error && xcb_connection_has_error(connection) == 0;
}

/// Servers tell it to those who come, and not when it changes: then the screen is as dense as it
/// was. This is exact for a screen that has become smaller.
RandrSize millimetresNow(const RandrServer& server, RandrSize size)
{
    const auto* screen = screenOf(server.connection());
    const MonitorJournal told{
        .size = {screen->width_in_pixels, screen->height_in_pixels},
        .millimetres = {screen->width_in_millimeters, screen->height_in_millimeters}};
    return united({1, 1}, millimetresOf(size, told));
}

/// How everything was before our first monitor: the others' journals say it.
MonitorJournal journalBefore(const RandrServer& server, const RandrLayout& layout,
                             const std::vector<MonitorJournal>& journals)
{
    MonitorJournal before{.owner = processNumber(),
                          .primary = layout.primary,
                          .size = layout.size,
                          .millimetres = millimetresNow(server, layout.size)};
    if (!journals.empty()) {
        before.size = journals[0].size;
        before.millimetres = journals[0].millimetres;
    }
    if (const auto* ours = journalOfOutput(journals, layout.primary))
        before.primary = ours->primary;
    return before;
}

/// For a monitor that neither is there nor was left there; nothing when there are as many as may
/// be.
std::optional<std::uint32_t> freeSlot(const RandrServer& server,
                                      const std::vector<MonitorJournal>& journals)
{
    for (std::uint32_t slot = 1; slot <= mostMonitors; ++slot) {
        const bool isTaken = std::any_of(journals.begin(), journals.end(),
                                         [=](const auto& each) { return each.slot == slot; });
        if (!isTaken && !hasOwner(server, slot))
            return slot;
    }
    return std::nullopt;
}

bool hasOthersMonitor(const RandrServer& server, const std::vector<MonitorJournal>& journals)
{
    return std::any_of(journals.begin(), journals.end(), [&](const auto& journal) {
        return journal.owner != processNumber() && hasOwner(server, journal.slot);
    });
}

} // namespace

ScreenAvailability wayToAMonitor(const RandrServer& server, const RandrLayout& layout)
{
    const auto journals = readJournals(server);
    if (hasOthersMonitor(server, journals))
        return {std::nullopt, ScreenObstacle::inUse};
    if (spareOutput(layout))
        return {ScreenWay::spareOutput, {}};
    if (followsNamedMonitors(windowManagerName(server)))
        return {ScreenWay::namedMonitor, {}};
    return {std::nullopt, ScreenObstacle::noSpareOutput};
}

std::optional<ScreenObstacle> VirtualMonitor::make(int width, int height)
{
    undoAbandonedMonitors(mServer);
    {
        const ServerGrab grab(mServer.connection());
        const auto layout = mServer.layout();
        if (!layout)
            return ScreenObstacle::gone;
        auto obstacle = claim(*layout);
        if (!obstacle)
            obstacle = begin(*layout, width, height);
        if (obstacle)
            return obstacle;
    }
    askWhatIsConnected(mServer);
    return std::nullopt;
}

VirtualMonitor::~VirtualMonitor()
{
    if (mJournal.slot != 0)
        undoMonitor(mServer, mJournal.slot);
}

std::optional<ScreenObstacle> VirtualMonitor::claim(const RandrLayout& layout)
{
    const auto available = wayToAMonitor(mServer, layout);
    const auto journals = readJournals(mServer);
    const auto slot = freeSlot(mServer, journals);
    if (!available.way || !slot)
        return available.way ? ScreenObstacle::noSpareOutput : available.obstacle;
    mJournal = journalBefore(mServer, layout, journals);
    mJournal.slot = *slot;
    choose(layout, journals);
    becomeOwner(mServer, *slot);
    writeJournal(mServer, mJournal);
    return std::nullopt;
}

void VirtualMonitor::choose(const RandrLayout& layout, const std::vector<MonitorJournal>& journals)
{
    if (const auto spare = spareOutput(layout)) {
        mJournal.output = spare->output;
        mCrtc = spare->crtc;
    } else {
        mJournal.panned = crtcToPan(mServer, layout, journals);
    }
}

std::optional<ScreenObstacle> VirtualMonitor::begin(const RandrLayout& layout, int width,
                                                    int height)
{
    const auto areas = others(layout);
    const RandrCrtc wanted{mCrtc, rightEdgeOf(areas), 0, width, height};
    if (!isFree(layout.largestSize, areas, wanted))
        return ScreenObstacle::tooLarge;
    if (arrange(layout, wanted))
        return std::nullopt;
    const auto reached = mServer.layout();
    const bool isLarge = reached && reached->size == united(layout.size, extentOf(wanted));
    return isLarge ? ScreenObstacle::failed : ScreenObstacle::tooLarge;
}

bool VirtualMonitor::resize(int width, int height)
{
    const ServerGrab grab(mServer.connection());
    const auto layout = mServer.layout();
    const auto shown = layout ? area(*layout) : std::nullopt;
    if (!shown)
        return false;
    RandrCrtc wanted{shown->id, shown->x, shown->y, width, height};
    const auto areas = others(*layout);
    if (!isFree(layout->largestSize, areas, wanted)) {
        wanted.x = rightEdgeOf(areas);
        wanted.y = 0;
    }
    return arrange(*layout, wanted);
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

/// What everybody else shows: the user's own, of them the primary one first; then ours.
std::vector<PixelRect> VirtualMonitor::others(const RandrLayout& layout) const
{
    const auto journals = readJournals(mServer);
    std::vector<PixelRect> users;
    std::vector<PixelRect> ours;
    for (const auto output : onlineOutputs(layout)) {
        if (output != mJournal.output)
            add(journalOfOutput(journals, output) ? ours : users, areaOf(*shownBy(layout, output)));
    }
    for (const auto& journal : journals) {
        const bool isOther = journal.output == 0 && journal.slot != mJournal.slot;
        if (const auto named = isOther ? namedMonitor(mServer, nameOf(journal)) : std::nullopt)
            add(ours, *named);
    }
    for (const auto& area : ours)
        add(users, area);
    return users;
}

bool VirtualMonitor::arrange(const RandrLayout& layout, const RandrCrtc& wanted)
{
    if (!isFree(layout.largestSize, others(layout), wanted))
        return false;
    const auto size = united(layout.size, extentOf(wanted));
    const bool isNamed = mJournal.output == 0;
    const bool isArranged = (size == layout.size || setSize(size)) &&
                            (isNamed ? name(layout, wanted) : switchOn(layout, wanted));
    tidy(mServer, mJournal);
    return isArranged;
}

bool VirtualMonitor::setSize(RandrSize size)
{
    return mServer.setScreenSize(size, millimetresOf(size, mJournal));
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
        setSize(size);
    freePointer(layout);
}

/// One of ours that is there already, else a new one; 0 when the server refuses.
RandrNumber VirtualMonitor::modeFor(const RandrLayout& layout, RandrSize size)
{
    for (const auto& mode : layout.modes) {
        if (mode.width == size.width && mode.height == size.height &&
            mode.name.starts_with(namePrefix(mJournal)))
            return mode.id;
    }
    return createMode(size);
}

RandrNumber VirtualMonitor::createMode(RandrSize size)
{
    auto* connection = mServer.connection();
    const auto name =
        namePrefix(mJournal) + std::to_string(size.width) + "x" + std::to_string(size.height);
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
    return ScreenGeometry{areaOf(*shown),  shown->width,   shown->height, 1,
                          framesPerSecond, others(*layout)};
}

} // namespace farview
