#include "Platform/Posix/InstalledFirewall.h"

#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/WholeFile.h"

#include <sstream>

namespace farview
{
namespace
{

constexpr std::size_t largestSetting = 64 * 1024;

bool isInstalled(const FirewallState& firewall) { return firewall.kind != FirewallKind::unknown; }

} // namespace

FirewallState InstalledFirewall::state()
{
    const FirewallState first = ufw();
    const FirewallState second = firewalld();
    return isInstalled(first) && (first.active || !second.active) ? first : second;
}

FirewallState InstalledFirewall::ufw() const
{
    if (!isThere("usr/sbin/ufw"))
        return {};
    return {FirewallKind::ufw, ufwIsEnabled(), isThere("usr/bin/gufw")};
}

FirewallState InstalledFirewall::firewalld() const
{
    if (!isThere("usr/sbin/firewalld") && !isThere("usr/bin/firewalld"))
        return {};
    // The service manager keeps such a link, to nowhere, for each unit that runs.
    const bool runs =
        isThere("run/systemd/units/invocation:firewalld.service") || isThere("run/firewalld.pid");
    return {FirewallKind::firewalld, runs, isThere("usr/bin/firewall-config")};
}

bool InstalledFirewall::isThere(const char* path) const { return isAnythingAt(mRoot + "/" + path); }

bool InstalledFirewall::ufwIsEnabled() const
{
    std::istringstream lines(readWholeFile(mRoot + "/etc/ufw/ufw.conf", largestSetting).bytes);
    bool enabled = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("ENABLED="))
            enabled = line == "ENABLED=yes" || line == "ENABLED=\"yes\"";
    }
    return enabled;
}

} // namespace farview
