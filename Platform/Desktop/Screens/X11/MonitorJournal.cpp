#include "Platform/Desktop/Screens/X11/MonitorJournal.h"

#include <algorithm>

namespace farview
{
namespace
{

constexpr std::size_t journalSize = 8;
/// As far as coordinates of the X protocol go.
constexpr std::uint32_t longestSide = 32767;

/// The name of the property, and of the selection whose owner has the monitor. 0 when the server
/// has gone.
xcb_atom_t atomOfMonitor(xcb_connection_t* connection)
{
    constexpr std::string_view name = "_FARVIEW_VIRTUAL_MONITOR";
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

xcb_window_t makeInvisibleWindow(const RandrServer& server)
{
    const auto window = xcb_generate_id(server.connection());
    xcb_create_window(server.connection(), 0, window, server.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

} // namespace

std::string namePrefix(std::uint32_t owner) { return "FVE-" + std::to_string(owner) + "-"; }

std::vector<std::uint32_t> journalNumbers(const MonitorJournal& journal)
{
    const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
    return {journal.owner,
            journal.output,
            journal.panned,
            journal.primary,
            number(journal.size.width),
            number(journal.size.height),
            number(journal.millimetres.width),
            number(journal.millimetres.height)};
}

std::optional<MonitorJournal> journalOf(std::span<const std::uint32_t> numbers)
{
    if (numbers.size() != journalSize || numbers[0] == 0)
        return std::nullopt;
    const auto isSide = [](std::uint32_t side) { return side > 0 && side <= longestSide; };
    if (!std::all_of(numbers.begin() + 4, numbers.end(), isSide))
        return std::nullopt;
    const auto size = [&](std::size_t place) {
        return RandrSize{static_cast<int>(numbers[place]), static_cast<int>(numbers[place + 1])};
    };
    return MonitorJournal{numbers[0], numbers[1], numbers[2], numbers[3], size(4), size(6)};
}

std::optional<MonitorJournal> readJournal(const RandrServer& server)
{
    auto* connection = server.connection();
    const auto cookie = xcb_get_property(connection, 0, server.root(), atomOfMonitor(connection),
                                         XCB_ATOM_CARDINAL, 0, journalSize + 1);
    const XReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32 ||
        !holds(*reply, sizeof *reply + std::size_t{4} * reply->value_len))
        return std::nullopt;
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return journalOf({first, reply->value_len});
}

void writeJournal(const RandrServer& server, const MonitorJournal& journal)
{
    const auto numbers = journalNumbers(journal);
    xcb_change_property(server.connection(), XCB_PROP_MODE_REPLACE, server.root(),
                        atomOfMonitor(server.connection()), XCB_ATOM_CARDINAL, 32, journalSize,
                        numbers.data());
}

void eraseJournal(const RandrServer& server)
{
    xcb_delete_property(server.connection(), server.root(), atomOfMonitor(server.connection()));
}

bool hasOwner(const RandrServer& server)
{
    auto* connection = server.connection();
    const auto cookie = xcb_get_selection_owner(connection, atomOfMonitor(connection));
    const XReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != 0;
}

bool becomeOwner(const RandrServer& server)
{
    auto* connection = server.connection();
    const ServerGrab grab(connection);
    if (hasOwner(server))
        return false;
    xcb_set_selection_owner(connection, makeInvisibleWindow(server), atomOfMonitor(connection),
                            XCB_CURRENT_TIME);
    return xcb_flush(connection) > 0;
}

} // namespace farview
