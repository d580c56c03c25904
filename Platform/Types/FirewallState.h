#pragma once

namespace farview
{

enum class FirewallKind { unknown, ufw, firewalld };

/// What can be known of this computer's firewall without any rights.
struct FirewallState {
    FirewallKind kind = FirewallKind::unknown;
    bool active = false;
    bool hasWindow = false; ///< a program with a window to set it is installed

    bool operator==(const FirewallState&) const = default;
};

} // namespace farview
