#include "Common/Rules/Connection.h"

#include <algorithm>

namespace farview
{
namespace
{

constexpr const char* otherDeviceName = "Other";
// Host names have at most 255 bytes, addresses far fewer.
constexpr std::size_t longestReportedText = 1024;

} // namespace

std::optional<std::size_t>
deviceForReportedName(const std::vector<std::optional<std::string>>& hostNames,
                      const std::string* reportedName)
{
    if (!reportedName || reportedName->empty())
        return std::nullopt;
    const auto found = std::find(hostNames.begin(), hostNames.end(), *reportedName);
    if (found == hostNames.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - hostNames.begin());
}

ConnectionByAddress connectionByAddress(const std::string& storedDevice, bool storedIsAddress,
                                        const std::optional<std::string>& knownAddress,
                                        const std::optional<std::string>& reportedAddress)
{
    if (storedIsAddress)
        return {storedDevice, storedDevice, std::nullopt};
    if (knownAddress)
        return {std::nullopt, std::nullopt, knownAddress};
    return {reportedAddress, std::nullopt, std::nullopt};
}

QueryResultStep queryResultStep(const std::string* reportedName, bool anyDeviceListed)
{
    if (!reportedName || reportedName->empty())
        return QueryResultStep::ignore;
    if (!anyDeviceListed && *reportedName != otherDeviceName)
        return QueryResultStep::tryAgainLater;
    return QueryResultStep::handle;
}

bool switchIsOutOfStep(int lookUpResult, int switchState)
{
    constexpr int runs = 0;
    constexpr int doesNotRun = -1;
    return (lookUpResult == runs && switchState == 0) ||
           (lookUpResult == doesNotRun && switchState == 1);
}

bool isAcceptableReportedText(const std::string* text)
{
    return !text || text->size() <= longestReportedText;
}

} // namespace farview
