#pragma once

#include "Applications/CommandLine.h"

#include <chrono>
#include <optional>
#include <string>

namespace farview
{

/// What the command line of farview-update says.
struct UpdateArguments {
    std::string bundle;
    std::string host;
    bool onlyChecks = false;
    std::chrono::seconds patience{30}; ///< with a server that is silent
    /// What to say instead of updating.
    std::optional<CommandLineAnswer> answer = {};
};

/// `words` begin with the program's name.
UpdateArguments readUpdateArguments(const QStringList& words);

} // namespace farview
