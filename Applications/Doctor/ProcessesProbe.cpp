#include "Applications/Doctor/Probes.h"

#include "Applications/Doctor/SessionProbe.h"
#include "Common/FVEConstants.h"
#include "Common/FVEPreferences.h"
#include "Common/GetPID.h"
#include "Platform/Desktop/OverlayBodies.h"
#include "Platform/Platform.h"

#include <array>

namespace farview
{
namespace
{

constexpr std::int32_t found = 0;
constexpr std::int32_t noneRuns = -1;
constexpr std::int32_t tooMany = -5;

constexpr const char* restartAdvice = "Switch Farview off and on again in the panel.";

/// What a program is called in findings and texts.
struct ProgramWords {
    std::string name;
    const char* runs;
    const char* off;
};

const ProgramWords serverWords{"server", "The screen server runs (process %@).",
                               "Farview is switched off; the screen server does not run."};
const ProgramWords statusItemWords{"status-item", "The status icon's program runs (process %@).",
                                   "The status icon is not wanted and does not run."};

bool readProgram(const char* name, ProgramFact& program)
{
    std::array<std::int32_t, 16> pids{};
    std::uint32_t count = 0;
    const auto result = GetAllPIDsForProcessName(
        name, pids.data(), static_cast<std::uint32_t>(pids.size()), &count, nullptr);
    if (result == found || result == tooMany) {
        for (const auto pid : pids) {
            if (pid > 0)
                program.pids.push_back(pid);
        }
    }
    return result == found || result == noneRuns || result == tooMany;
}

/// What the settings say, their defaults included. Reading them through their own object would
/// write what is missing, so that goes nowhere.
void readSettings(Platform& platform, ProcessFacts& facts)
{
    const Platform nowhere;
    OverlayPreferences stored(*platform.preferences);
    FVEPreferences settings(stored, *nowhere.distributedNotificationCenter);
    facts.isSwitchedOn = settings.currentState() == 1;
    facts.showsStatusItem = settings.showInMenuBar();
}

std::string joined(const std::vector<std::int32_t>& pids)
{
    std::string text;
    for (const auto pid : pids)
        text += (text.empty() ? "" : ", ") + std::to_string(pid);
    return text;
}

Finding finding(Severity severity, const std::string& name, Sentence text, const char* advice = "")
{
    return {Area::processes, severity, name, std::move(text), {advice}};
}

Finding aboutRunning(const ProgramWords& words, const ProgramFact& program)
{
    const std::string pids = joined(program.pids);
    auto result = finding(Severity::ok, words.name + "-running", {words.runs, {pids}});
    result.details = {{"pids", pids}};
    return result;
}

Finding aboutServer(const ProcessFacts& facts)
{
    if (!facts.server.pids.empty())
        return aboutRunning(serverWords, facts.server);
    if (facts.isSwitchedOn)
        return finding(Severity::problem, "server-not-running",
                       {"Farview is switched on, but the screen server does not run."},
                       restartAdvice);
    return finding(Severity::ok, "server-off", {serverWords.off});
}

Finding aboutStatusItem(const ProcessFacts& facts)
{
    if (!facts.statusItem.pids.empty())
        return aboutRunning(statusItemWords, facts.statusItem);
    if (facts.showsStatusItem)
        return finding(Severity::note, "status-item-not-running",
                       {"The status icon is wanted, but its program does not run."},
                       "Open the panel: it starts the program.");
    return finding(Severity::ok, "status-item-off", {statusItemWords.off});
}

/// A process that is there and does not hear anything.
bool isDeaf(const ProcessFacts& facts, const ProgramFact& program)
{
    return facts.hasBus && !program.pids.empty() && !program.isOnBus;
}

} // namespace

ProcessFacts processFacts(Platform& platform, const SessionAnswers& session)
{
    ProcessFacts facts;
    facts.isTableReadable = readProgram(kFVEScreenServerApplicationName, facts.server) &&
                            readProgram(kFVEMenuExtraApplicationName, facts.statusItem);
    readSettings(platform, facts);
    facts.hasBus = session.hasBus;
    facts.server.isOnBus = session.hasServer;
    facts.statusItem.isOnBus = session.hasStatusItem;
    return facts;
}

Findings findingsAboutProcesses(const ProcessFacts& facts)
{
    if (!facts.isTableReadable)
        return {finding(Severity::note, "unreadable", {"The running programs cannot be listed."})};
    Findings findings{aboutServer(facts), aboutStatusItem(facts)};
    if (isDeaf(facts, facts.server))
        findings.push_back(finding(Severity::problem, "server-deaf",
                                   {"The screen server runs, but not on this session's message "
                                    "bus: it hears nothing of the panel."},
                                   "Log out and in again."));
    if (isDeaf(facts, facts.statusItem))
        findings.push_back(finding(Severity::note, "status-item-deaf",
                                   {"The status icon's program runs, but not on this session's "
                                    "message bus."},
                                   "Log out and in again."));
    return findings;
}

} // namespace farview
