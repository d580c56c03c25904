#pragma once

#include "Platform/Types/FirewallState.h"

#include <string>

namespace farview
{

/// What to say about firewalls when a device cannot be reached.
struct FirewallAdvice {
    std::string
        text; ///< the key; its "%@" are the tool, where there is one, then the device's port
    std::string tool; ///< by which this computer's firewall is set; empty when that is not known

    bool operator==(const FirewallAdvice&) const = default;
};

/// Names this computer's firewall only while it is at work: one that is off is in nobody's way.
FirewallAdvice firewallAdvice(const FirewallState& firewall);

} // namespace farview
