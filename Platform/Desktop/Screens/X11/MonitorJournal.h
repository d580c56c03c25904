#pragma once

#include "Platform/Desktop/Screens/X11/RandrServer.h"

#include <span>
#include <string>
#include <vector>

namespace farview
{

/// As many monitors of ours may be there at once.
constexpr std::uint32_t mostMonitors = 8;

/// What it takes to undo a monitor after its maker's death. It is written on the root window before
/// anything is changed: a property there lives exactly as long as the change, over our death but
/// not over the server's.
struct MonitorJournal {
    /// Tells the monitors that are there apart: 1 to `mostMonitors`.
    std::uint32_t slot = 0;
    /// The process that made it; names of what it made tell it apart from what others made.
    std::uint32_t owner = 0;
    /// The output, which was off; 0 for a monitor that no output shows.
    RandrNumber output = 0;
    /// The crtc that pans for its sake, and did not before; 0 for none.
    RandrNumber panned = 0;
    /// The main output before the first monitor of ours.
    RandrNumber primary = 0;
    /// How large the screen was then.
    RandrSize size;
    RandrSize millimetres;

    bool operator==(const MonitorJournal&) const = default;
};

/// What the names of its modes begin with.
std::string namePrefix(const MonitorJournal& journal);
/// Its own where no output shows it.
std::string nameOf(const MonitorJournal& journal);
/// Of a screen of another size, as dense as it was. Exact on the way back from a larger one.
RandrSize millimetresOf(RandrSize size, const MonitorJournal& journal);

/// Their form in the property.
std::vector<std::uint32_t> journalNumbers(std::span<const MonitorJournal> journals);
/// None when these are no journals: any program may write there.
std::vector<MonitorJournal> journalsOf(std::span<const std::uint32_t> numbers);

/// Those of all monitors on the server, as far as they can be understood.
std::vector<MonitorJournal> readJournals(const RandrServer& server);
// Of one among the others; only while nobody else changes anything.
void writeJournal(const RandrServer& server, const MonitorJournal& journal);
void eraseJournal(const RandrServer& server, std::uint32_t slot);

/// Makes the connection the owner of that slot's monitor, until it ends.
void becomeOwner(const RandrServer& server, std::uint32_t slot);
bool hasOwner(const RandrServer& server, std::uint32_t slot);
bool hasAnyOwner(const RandrServer& server);

} // namespace farview
