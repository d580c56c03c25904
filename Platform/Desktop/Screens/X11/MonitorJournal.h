#pragma once

#include "Platform/Desktop/Screens/X11/RandrServer.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace farview
{

/// What it takes to undo a monitor after its maker's death. It is written on the root window before
/// anything is changed: a property there lives exactly as long as the change, over our death but
/// not over the server's.
struct MonitorJournal {
    /// The process that made it; names of what it made tell it apart from what others made.
    std::uint32_t owner = 0;
    /// The output, which was off; 0 for a monitor that no output shows.
    RandrNumber output = 0;
    /// The crtc that pans for its sake, and did not before; 0 for none.
    RandrNumber panned = 0;
    /// The main output before.
    RandrNumber primary = 0;
    /// How large the screen was.
    RandrSize size;
    RandrSize millimetres;

    bool operator==(const MonitorJournal&) const = default;
};

/// What the names of the owner's modes begin with, and of its monitor.
std::string namePrefix(std::uint32_t owner);

/// Its form in the property.
std::vector<std::uint32_t> journalNumbers(const MonitorJournal& journal);
/// Nothing when it is no journal: any program may write there.
std::optional<MonitorJournal> journalOf(std::span<const std::uint32_t> numbers);

/// The one on the server; nothing when there is none that can be understood.
std::optional<MonitorJournal> readJournal(const RandrServer& server);
void writeJournal(const RandrServer& server, const MonitorJournal& journal);
void eraseJournal(const RandrServer& server);

/// Makes the connection the only one that may have a monitor, until it ends. False while another
/// one is.
bool becomeOwner(const RandrServer& server);
bool hasOwner(const RandrServer& server);

} // namespace farview
