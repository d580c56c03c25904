#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// The first device whose host name is exactly the reported one. No name never equals no name.
std::optional<std::size_t>
deviceForReportedName(const std::vector<std::optional<std::string>>& hostNames,
                      const std::string* reportedName);

/// What follows from the report of a connection by address.
struct ConnectionByAddress {
    std::optional<std::string> address;       ///< the connection's address; nothing: as known
    std::optional<std::string> lastOther;     ///< to store as the address typed last
    std::optional<std::string> currentDevice; ///< to store as the device in use

    bool operator==(const ConnectionByAddress&) const = default;
};
/// `storedDevice` is the device in use as stored, `storedIsAddress` whether that is an address;
/// `knownAddress` is what the sheet had asked for, `reportedAddress` what the report says.
ConnectionByAddress connectionByAddress(const std::string& storedDevice, bool storedIsAddress,
                                        const std::optional<std::string>& knownAddress,
                                        const std::optional<std::string>& reportedAddress);

/// What to do with the server's answer to the query for its device.
enum class QueryResultStep {
    ignore,
    tryAgainLater, ///< no device is known yet that the name could mean
    handle,
};
QueryResultStep queryResultStep(const std::string* reportedName, bool anyDeviceListed);

/// Whether the switch contradicts the result of looking for the server's process: 0 it runs, -1 it
/// does not, anything else is not known. `switchState` 0 is off, 1 on.
bool switchIsOutOfStep(int lookUpResult, int switchState);

/// Whether a text that another process sent is short enough to be a name or an address.
bool isAcceptableReportedText(const std::string* text);

} // namespace farview
