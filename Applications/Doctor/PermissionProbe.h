#pragma once

#include "Applications/Doctor/Finding.h"

#include <string>

namespace farview
{

class Bundle;

/// Whether KDE's desktop lets the screen server add screens.
struct PermissionFacts {
    bool isNeeded = false; ///< this is such a desktop
    std::string program{};
    std::string file{}; ///< that says so; empty when there is none
};

/// The desktop file that says that KDE may let this program add screens, of those that come with
/// it; empty when there is none.
std::string permissionFileOf(const std::string& program);
/// `pane` may be null.
PermissionFacts permissionFacts(const Bundle* pane);
Findings findingsAboutPermission(const PermissionFacts& facts);

} // namespace farview
