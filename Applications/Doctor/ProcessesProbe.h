#pragma once

#include "Applications/Doctor/Finding.h"

#include <cstdint>
#include <string>
#include <vector>

namespace farview
{

struct Platform;
struct SessionFacts;

/// One of the programs that work in the background.
struct ProgramFact {
    std::vector<std::int32_t> pids; ///< of the user's processes of that name
    bool isOnBus = false;           ///< it can be heard and told to quit
};

struct ProcessFacts {
    bool isTableReadable = true;
    bool isSwitchedOn = false; ///< what the user set: the server is to run
    bool showsStatusItem = false;
    bool hasBus = false;
    ProgramFact server;
    ProgramFact statusItem;
};

ProcessFacts processFacts(Platform& platform, const SessionFacts& session);
Findings findingsAboutProcesses(const ProcessFacts& facts);

} // namespace farview
