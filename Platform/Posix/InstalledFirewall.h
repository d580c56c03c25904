#pragma once

#include "Platform/Firewall.h"

#include <string>

namespace farview
{

/// Knows ufw and firewalld by their files: programs, ufw's setting, and what tells that firewalld
/// runs. Of two that are installed the active one counts. Rules made by other means stay unknown:
/// they can only be read with an administrator's rights.
class InstalledFirewall final : public Firewall
{
public:
    InstalledFirewall() : InstalledFirewall("/") {}
    /// `root`: the folder that is taken for the root of the file system.
    explicit InstalledFirewall(std::string root) : mRoot(std::move(root)) {}

    FirewallState state() override;

private:
    FirewallState ufw() const;
    FirewallState firewalld() const;
    bool isThere(const char* path) const;
    bool ufwIsEnabled() const;

    std::string mRoot;
};

} // namespace farview
