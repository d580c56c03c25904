#pragma once

#include "Platform/Desktop/Screens/X11/MonitorJournal.h"

namespace farview
{

/// Takes away what was made for the monitor and nothing shows any more. The screen becomes as small
/// as what is shown allows, and our monitors that only have names, but not smaller than it was.
void tidy(RandrServer& server, const MonitorJournal& journal);
/// Asks the driver what is plugged in. Programs leave out an output that counts as disconnected;
/// one without a plug counts as connected from the first such question on while it is on.
void askWhatIsConnected(const RandrServer& server);

// Switch monitors off as their journals say and take the journals away. What others changed since
// then stays. True when nothing is left to undo.

bool undoMonitor(RandrServer& server, std::uint32_t slot);
/// Those whose maker has gone; one that has an owner is left alone.
bool undoAbandonedMonitors(RandrServer& server);

} // namespace farview
