#include "Common/Rules/FirewallAdvice.h"

namespace farview
{
namespace
{

constexpr const char* anyFirewall =
    "A firewall may be in the way, on this computer or on the device: it must let UDP port 5353 "
    "(mDNS) and the device's TCP port %@ through.";
constexpr const char* setInAProgram =
    "The firewall of this computer is set in the program %@. There and on the device, UDP port "
    "5353 (mDNS) and the device's TCP port %@ must be let through.";
constexpr const char* setByACommand =
    "The firewall of this computer is set with the command %@. There and on the device, UDP port "
    "5353 (mDNS) and the device's TCP port %@ must be let through.";

} // namespace

FirewallAdvice firewallAdvice(const FirewallState& firewall)
{
    const bool isUfw = firewall.kind == FirewallKind::ufw;
    if (!firewall.active || firewall.kind == FirewallKind::unknown)
        return {anyFirewall, {}};
    if (firewall.hasWindow)
        return {setInAProgram, isUfw ? "Gufw" : "firewall-config"};
    return {setByACommand, isUfw ? "ufw" : "firewall-cmd"};
}

} // namespace farview
