#pragma once

#include "Applications/Doctor/Finding.h"

#include <optional>
#include <string>

namespace farview
{

class Bundle;
struct Platform;

/// One piece of the system that lies in a bundle.
struct Piece {
    std::string path;
    std::string version; ///< empty when the bundle does not tell
};

struct VersionFacts {
    std::string doctor; ///< version of the program that asks
    std::string system; ///< name of the operating system
    std::string kernel;
    std::string toolkit;
    std::optional<Piece> pane; ///< nothing when none is installed
    std::optional<Piece> server;
    std::optional<Piece> statusItem;
};

/// `pane` may be null.
VersionFacts versionFacts(Platform& platform, const Bundle* pane);
Findings findingsAboutVersions(const VersionFacts& facts);

} // namespace farview
