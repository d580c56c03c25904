#include "Common/Rules/VersionText.h"

#include "Common/Rules/FilledText.h"

namespace farview
{
namespace
{

constexpr const char* buildNumber = "15644";

} // namespace

std::string versionText(const std::optional<std::string>& version)
{
    return textOrNull(version) + " (" + buildNumber + ")";
}

std::string versionToolTip(const std::vector<ComponentVersion>& components)
{
    std::string lines;
    for (const auto& each : components) {
        if (!lines.empty())
            lines += "\n";
        lines += each.label + ": " + textOrNull(each.version);
    }
    return lines;
}

} // namespace farview
