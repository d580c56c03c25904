#pragma once

#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// The panel's own version and build: "1.2 (15644)"; "(null)" in the place of a version that is not
/// known.
std::string versionText(const std::optional<std::string>& version);

/// A piece of the system, with the name that the user sees.
struct ComponentVersion {
    std::string label;
    std::optional<std::string> version;
};

/// One line for each: "Server: 1.2". No line break at the end.
std::string versionToolTip(const std::vector<ComponentVersion>& components);

} // namespace farview
