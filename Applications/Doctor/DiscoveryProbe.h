#pragma once

#include "Applications/Doctor/Finding.h"
#include "Platform/Types/DiscoveryCondition.h"

#include <string>
#include <vector>

namespace farview
{

/// An address of this computer on which devices can be looked for.
struct InterfaceFact {
    std::string name; ///< of the interface: "eth0"
    std::string address;
    bool isLoopback = false;
};

struct DiscoveryFacts {
    bool isDaemonThere = false;
    DiscoveryCondition condition = DiscoveryCondition::starting;
    std::vector<InterfaceFact> interfaces;
};

std::vector<InterfaceFact> interfaceFacts();
Findings findingsAboutDiscovery(const DiscoveryFacts& facts);

} // namespace farview
