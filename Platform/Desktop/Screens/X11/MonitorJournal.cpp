#include "Platform/Desktop/Screens/X11/MonitorJournal.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

namespace farview
{
namespace
{

constexpr std::size_t journalSize = 9;
/// As far as coordinates of the X protocol go.
constexpr std::uint32_t longestSide = 32767;

/// The name of the property.
const std::string propertyName = "_FARVIEW_VIRTUAL_MONITOR";

/// Of the selection whose owner has the slot's monitor.
xcb_atom_t selectionOf(xcb_connection_t* connection, std::uint32_t slot)
{
    return atomNamed(connection, propertyName + "_" + std::to_string(slot));
}

xcb_window_t makeInvisibleWindow(const RandrServer& server)
{
    const auto window = xcb_generate_id(server.connection());
    xcb_create_window(server.connection(), 0, window, server.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

/// Nothing when it is none.
std::optional<MonitorJournal> journalOf(std::span<const std::uint32_t> numbers)
{
    const bool hasMaker = numbers[0] > 0 && numbers[0] <= mostMonitors && numbers[1] > 0;
    const auto isSide = [](std::uint32_t side) { return side > 0 && side <= longestSide; };
    if (!hasMaker || !std::all_of(numbers.begin() + 5, numbers.end(), isSide))
        return std::nullopt;
    const auto size = [&](std::size_t place) {
        return RandrSize{static_cast<int>(numbers[place]), static_cast<int>(numbers[place + 1])};
    };
    return MonitorJournal{numbers[0], numbers[1], numbers[2], numbers[3],
                          numbers[4], size(5),    size(7)};
}

void writeJournals(const RandrServer& server, const std::vector<MonitorJournal>& journals)
{
    const auto property = atomNamed(server.connection(), propertyName);
    const auto numbers = journalNumbers(journals);
    if (journals.empty())
        xcb_delete_property(server.connection(), server.root(), property);
    else
        xcb_change_property(server.connection(), XCB_PROP_MODE_REPLACE, server.root(), property,
                            XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(numbers.size()),
                            numbers.data());
}

std::vector<MonitorJournal> journalsWithout(const RandrServer& server, std::uint32_t slot)
{
    auto journals = readJournals(server);
    std::erase_if(journals, [=](const auto& journal) { return journal.slot == slot; });
    return journals;
}

} // namespace

std::string namePrefix(const MonitorJournal& journal)
{
    return "FVE-" + std::to_string(journal.owner) + "-" + std::to_string(journal.slot) + "-";
}

std::string nameOf(const MonitorJournal& journal) { return namePrefix(journal) + "monitor"; }

RandrSize millimetresOf(RandrSize size, const MonitorJournal& journal)
{
    const auto scaled = [](int side, int before, int millimetres) {
        return static_cast<int>(std::lround(double(millimetres) * side / before));
    };
    return {scaled(size.width, journal.size.width, journal.millimetres.width),
            scaled(size.height, journal.size.height, journal.millimetres.height)};
}

std::vector<std::uint32_t> journalNumbers(std::span<const MonitorJournal> journals)
{
    const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
    std::vector<std::uint32_t> numbers;
    for (const auto& journal : journals)
        numbers.insert(numbers.end(),
                       {journal.slot, journal.owner, journal.output, journal.panned,
                        journal.primary, number(journal.size.width), number(journal.size.height),
                        number(journal.millimetres.width), number(journal.millimetres.height)});
    return numbers;
}

std::vector<MonitorJournal> journalsOf(std::span<const std::uint32_t> numbers)
{
    if (numbers.size() % journalSize != 0)
        return {};
    std::vector<MonitorJournal> journals;
    std::set<std::uint32_t> slots;
    for (; !numbers.empty(); numbers = numbers.subspan(journalSize)) {
        const auto journal = journalOf(numbers.first(journalSize));
        if (!journal || !slots.insert(journal->slot).second)
            return {};
        journals.push_back(*journal);
    }
    return journals;
}

std::vector<MonitorJournal> readJournals(const RandrServer& server)
{
    auto* connection = server.connection();
    const auto cookie =
        xcb_get_property(connection, 0, server.root(), atomNamed(connection, propertyName),
                         XCB_ATOM_CARDINAL, 0, journalSize * mostMonitors + 1);
    return journalsOf(numbersOf(connection, cookie));
}

void writeJournal(const RandrServer& server, const MonitorJournal& journal)
{
    auto journals = journalsWithout(server, journal.slot);
    journals.push_back(journal);
    writeJournals(server, journals);
}

void eraseJournal(const RandrServer& server, std::uint32_t slot)
{
    writeJournals(server, journalsWithout(server, slot));
}

bool hasOwner(const RandrServer& server, std::uint32_t slot)
{
    auto* connection = server.connection();
    const auto cookie = xcb_get_selection_owner(connection, selectionOf(connection, slot));
    const XReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != 0;
}

bool hasAnyOwner(const RandrServer& server)
{
    std::uint32_t slot = 1;
    while (slot <= mostMonitors && !hasOwner(server, slot))
        ++slot;
    return slot <= mostMonitors;
}

void becomeOwner(const RandrServer& server, std::uint32_t slot)
{
    auto* connection = server.connection();
    xcb_set_selection_owner(connection, makeInvisibleWindow(server), selectionOf(connection, slot),
                            XCB_CURRENT_TIME);
}

} // namespace farview
