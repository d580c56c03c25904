#include "Applications/Doctor/Probes.h"

#include "Platform/Desktop/Discovery/HostAddresses.h"

#include <QNetworkInterface>

#include <algorithm>

namespace farview
{
namespace
{

constexpr const char* networkAdvice = "Connect this computer to the network that the device is on.";

Finding finding(Severity severity, const char* name, const char* text, const char* advice)
{
    return {Area::discovery, severity, name, {text}, {advice}};
}

Finding aboutSource(const DiscoveryFacts& facts)
{
    switch (facts.condition) {
    case DiscoveryCondition::refused:
        return finding(Severity::problem, "refused",
                       "A discovery daemon holds the port for itself and cannot be reached.",
                       "Restart avahi-daemon, or remove \"disallow-other-stacks\" from its "
                       "settings.");
    case DiscoveryCondition::unavailable:
        return finding(Severity::problem, "unavailable",
                       "Devices cannot be looked for: no discovery daemon answers, and looking "
                       "without one failed.",
                       networkAdvice);
    case DiscoveryCondition::starting:
        return finding(Severity::problem, "undecided",
                       "It could not be found out in time how devices are looked for.", "");
    case DiscoveryCondition::working:
        break;
    }
    return facts.isDaemonThere
               ? finding(Severity::ok, "daemon",
                         "Devices are found through the discovery daemon (Avahi).", "")
               : finding(Severity::ok, "embedded",
                         "No discovery daemon answers; Farview looks for devices by itself.", "");
}

Finding aboutInterface(const InterfaceFact& each)
{
    return {Area::discovery,
            Severity::ok,
            "interface",
            {"Network interface %@ with the address %@", {each.name, each.address}},
            {},
            {{"interface", each.name}, {"address", each.address}}};
}

} // namespace

std::vector<InterfaceFact> interfaceFacts()
{
    std::vector<InterfaceFact> facts;
    for (const HostAddress& each : hostAddresses())
        facts.push_back(
            {QNetworkInterface::interfaceNameFromIndex(each.interfaceIndex).toStdString(),
             each.address, each.isLoopback});
    return facts;
}

Findings findingsAboutDiscovery(const DiscoveryFacts& facts)
{
    Findings findings{aboutSource(facts)};
    const auto isLoopback = [](const InterfaceFact& each) { return each.isLoopback; };
    const auto& all = facts.interfaces;
    if (std::all_of(all.begin(), all.end(), isLoopback))
        findings.push_back(finding(Severity::problem, "loopback-only",
                                   "This computer is on no network that carries multicast: only "
                                   "devices on this computer itself can be found.",
                                   networkAdvice));
    for (const auto& each : all) {
        if (!each.isLoopback)
            findings.push_back(aboutInterface(each));
    }
    return findings;
}

} // namespace farview
