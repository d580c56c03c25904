#pragma once

#include "Platform/LoginItem.h"
#include "Platform/Posix/Environment.h"

#include <string>

namespace farview
{

/// A file in the user's folder of autostart entries ("com.quillon.Farview.desktop"), which every
/// desktop reads at login. Its presence is the state; one that the desktop's own settings marked as
/// hidden counts as off.
class AutostartEntry final : public LoginItem
{
public:
    /// Looks at the environment now, once.
    explicit AutostartEntry(EnvironmentUse use);

    bool isEnabled() override;
    bool enable(const Command& command) override;
    bool disable() override;

    const std::string& path() const { return mPath; }

private:
    std::string mFolder;
    std::string mPath;
};

/// The command as an "Exec" line spells it: each part quoted, so that it is taken as it is. Empty
/// when a part holds what no such line can carry (a control character).
std::string execLine(const LoginItem::Command& command);

} // namespace farview
