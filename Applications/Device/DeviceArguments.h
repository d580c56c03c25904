#pragma once

#include "Applications/CommandLine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace farview
{

/// What the command line of farview-device says.
struct DeviceArguments {
    std::optional<std::string> name;
    std::optional<std::string> hostName;
    std::uint16_t port = 6001;
    bool isHeadless = false;
    /// Whether pictures leave room for the host's own windows on the same screen.
    bool isInWindow = false;
    /// Where pictures are written instead of shown.
    std::optional<std::string> pictureFile;
    /// Refuse every host, for this reason.
    std::optional<std::string> refusal;
    /// End at once when a device is seen within that many seconds.
    std::optional<double> unlessSeenWithin;
    /// The next computer that asks is confirmed without a question.
    bool pairsOnce = false;
    /// Six digits that the user sees, for a device that runs already.
    std::optional<std::string> acceptedDigits;
    bool listsKnown = false;
    /// How the key begins of the computer that is to be forgotten: at least 8 hexadecimal digits.
    std::optional<std::string> forgottenKey;
    /// What to say instead of being a device.
    std::optional<CommandLineAnswer> answer;
};

/// `words` begin with the program's name.
DeviceArguments readDeviceArguments(const QStringList& words);

} // namespace farview
