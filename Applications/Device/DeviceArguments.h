#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// What the command line of farview-device says.
struct DeviceArguments {
    std::optional<std::string> name;
    std::optional<std::string> hostName;
    std::uint16_t port = 6001;
    bool isHeadless = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
    /// Refuse every host, for this reason.
    std::optional<std::string> refusal;
    /// End at once when a device is seen within that many seconds.
    std::optional<double> unlessSeenWithin;
    /// What is wrong with the command line; empty when nothing is.
    std::string mistake;
};

/// Reads the arguments, without the program's name. Values may follow as "--name X" or "--name=X".
DeviceArguments readDeviceArguments(const std::vector<std::string>& arguments);

/// The text that --help prints.
extern const char* const deviceUsage;

} // namespace farview
