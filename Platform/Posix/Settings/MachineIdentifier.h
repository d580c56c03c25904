#pragma once

#include <string>

namespace farview
{

/// What names this computer in files that hold on this computer only: the system's machine
/// identifier, else the message bus's, else "localhost".
std::string machineIdentifier();

/// The same, with another folder in the place of "/".
std::string machineIdentifierBelow(const std::string& root);

} // namespace farview
