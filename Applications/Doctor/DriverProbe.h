#pragma once

#include "Applications/Doctor/Finding.h"

#include <string>
#include <vector>

namespace farview
{

struct Platform;

/// A driver extension's bundle, in one of the folders for them.
struct ExtensionFact {
    std::string path;
    std::string version; ///< empty when the bundle does not tell
    bool isUsable = false;
};

struct DriverFacts {
    bool isPublished = false; ///< what the panel asks: the registry publishes the driver
    std::vector<std::string> folders;
    std::vector<ExtensionFact> extensions; ///< all that are there, whatever their names
};

DriverFacts driverFacts(Platform& platform, std::vector<std::string> folders);
Findings findingsAboutDriver(const DriverFacts& facts);

} // namespace farview
