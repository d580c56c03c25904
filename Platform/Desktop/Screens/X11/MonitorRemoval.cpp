#include "Platform/Desktop/Screens/X11/MonitorRemoval.h"

#include "Platform/Desktop/Screens/X11/NamedMonitor.h"
#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <xcb/randr.h>

#include <algorithm>

namespace farview
{
namespace
{

bool hasMode(const RandrOutput& output, RandrNumber mode)
{
    return std::find(output.modes.begin(), output.modes.end(), mode) != output.modes.end();
}

void destroyMode(const RandrServer& server, const RandrLayout& layout, RandrNumber mode)
{
    for (const auto& output : layout.outputs) {
        if (hasMode(output, mode))
            xcb_randr_delete_output_mode(server.connection(), output.id, mode);
    }
    xcb_randr_destroy_mode(server.connection(), mode);
}

/// What the screen must have at least.
RandrSize heldSize(const RandrServer& server, const RandrLayout& layout)
{
    auto size = neededSize(layout);
    for (const auto& journal : readJournals(server)) {
        const auto named =
            journal.output == 0 ? namedMonitor(server, nameOf(journal)) : std::nullopt;
        if (named)
            size = united(size, {named->x + named->width, named->y + named->height});
    }
    return size;
}

/// A journal may be anybody's writing: it never leads to an output with a plug.
bool isBelievable(const RandrLayout& layout, const MonitorJournal& journal)
{
    const auto* output = withId(layout.outputs, journal.output);
    return output && hasNoPlug(output->name);
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

/// What others made of the panning stays, and what another monitor of ours needs of it.
void removeNamed(const RandrServer& server, const RandrLayout& layout,
                 const MonitorJournal& journal)
{
    const auto journals = readJournals(server);
    const bool isNeeded = std::any_of(journals.begin(), journals.end(), [&](const auto& other) {
        return other.slot != journal.slot && other.panned == journal.panned;
    });
    const auto* panned = withId(layout.crtcs, journal.panned);
    if (panned && !isNeeded && panningOf(server, panned->id) == areaOf(*panned))
        keepPointerIn(server, panned->id);
    if (namedMonitor(server, nameOf(journal)))
        deleteNamedMonitor(server, nameOf(journal));
}

void undo(RandrServer& server, const RandrLayout& layout, const MonitorJournal& journal)
{
    if (journal.output == 0) {
        removeNamed(server, layout, journal);
        tidy(server, journal);
    } else if (isBelievable(layout, journal)) {
        switchOff(server, layout, journal.output);
        tidy(server, journal);
        if (layout.primary == journal.output && journal.primary != journal.output)
            xcb_randr_set_output_primary(server.connection(), server.root(), journal.primary);
    }
    eraseJournal(server, journal.slot);
}

/// True when no monitor is left to which the condition applies.
template <typename Condition> bool undoMonitors(RandrServer& server, const Condition& applies)
{
    bool isUndone = false;
    bool isKnown = true;
    {
        const ServerGrab grab(server.connection());
        for (const auto& journal : readJournals(server)) {
            if (!applies(journal))
                continue;
            const auto layout = server.layout();
            isKnown = layout.has_value();
            if (isKnown)
                undo(server, *layout, journal);
            isUndone = true;
        }
    }
    if (isUndone)
        askWhatIsConnected(server);
    return isKnown && xcb_connection_has_error(server.connection()) == 0;
}

} // namespace

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
        if (mode.name.starts_with(namePrefix(journal)) && !isShown(mode.id))
            destroyMode(server, *layout, mode.id);
    }
    const auto size = united(journal.size, heldSize(server, *layout));
    if (size != layout->size)
        server.setScreenSize(size, millimetresOf(size, journal));
}

void askWhatIsConnected(const RandrServer& server)
{
    auto* connection = server.connection();
    const XReply<xcb_randr_get_screen_resources_reply_t> reply(xcb_randr_get_screen_resources_reply(
        connection, xcb_randr_get_screen_resources(connection, server.root()), nullptr));
}

bool undoMonitor(RandrServer& server, std::uint32_t slot)
{
    return undoMonitors(server, [=](const auto& journal) { return journal.slot == slot; });
}

bool undoAbandonedMonitors(RandrServer& server)
{
    // Nobody becomes an owner between the look and the undoing.
    return server.isUsable() && undoMonitors(server, [&](const auto& journal) {
               return !hasOwner(server, journal.slot);
           });
}

} // namespace farview
