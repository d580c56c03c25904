#pragma once

#include <QStringList>

#include <chrono>
#include <string>

namespace farview
{

/// What the command line asks for.
struct UpdateArguments {
    std::string bundle;
    std::string host;
    bool onlyChecks = false;
    std::chrono::seconds patience{30}; ///< how long a server may be silent
    std::string answer;                ///< not empty: only print this, help or version
    std::string mistake;               ///< not empty: it is wrong; printable
};

/// `commandLine` begins with the program's name. Needs the application object.
UpdateArguments readUpdateArguments(const QStringList& commandLine);

} // namespace farview
