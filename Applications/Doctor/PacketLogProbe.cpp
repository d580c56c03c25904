#include "Applications/Doctor/Probes.h"

#include "Common/FVELogging.h"
#include "Common/FVEPreferences.h"
#include "Platform/Platform.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/SearchPaths.h"

namespace farview
{
namespace
{

/// Their names end with the date, so the last name is that of the latest.
std::string latestLogIn(const std::string& home)
{
    std::string latest;
    for (const auto& name : foldersInFolder(home)) {
        if (name.starts_with(kFVELoggingFolderName))
            latest = home + "/" + name;
    }
    return latest;
}

} // namespace

PacketLogFacts packetLogFacts(Platform& platform)
{
    FVEPreferences settings(*platform.preferences, *platform.distributedNotificationCenter);
    const auto home = platform.searchPaths->homeDirectory();
    return {settings.logsScreenPackets(), home, latestLogIn(home)};
}

Findings findingsAboutPacketLog(const PacketLogFacts& facts)
{
    Findings findings;
    if (facts.isOn)
        findings.push_back({Area::processes,
                            Severity::note,
                            "packet-log-on",
                            {"The screen server logs what it sends of the screen, in a new folder "
                             "in %@ each time.",
                             {facts.home}},
                            {"\"farview-doctor --packet-log off\" ends that."},
                            {{"path", facts.home}}});
    else
        findings.push_back({Area::processes,
                            Severity::ok,
                            "packet-log-off",
                            {"The screen server does not log what it sends of the screen."}});
    if (!facts.latest.empty())
        findings.push_back({Area::processes,
                            Severity::note,
                            "packet-log",
                            {"A log of what was on the screen lies in %@.", {facts.latest}},
                            {"Remove it when you do not need it."},
                            {{"path", facts.latest}}});
    return findings;
}

} // namespace farview
