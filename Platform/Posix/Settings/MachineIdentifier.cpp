#include "Platform/Posix/Settings/MachineIdentifier.h"

#include "Platform/Posix/PropertyLists/PropertyListScalars.h"
#include "Platform/Posix/WholeFile.h"

#include <algorithm>

namespace farview
{
namespace
{

/// 32 lower-case hexadecimal digits; a system that was never started says "uninitialized".
bool isIdentifier(std::string_view text)
{
    return text.size() == 32 && std::all_of(text.begin(), text.end(), [](char each) {
               return (each >= '0' && each <= '9') || (each >= 'a' && each <= 'f');
           });
}

} // namespace

std::string machineIdentifier() { return machineIdentifierBelow({}); }

std::string machineIdentifierBelow(const std::string& root)
{
    constexpr std::size_t largestFile = 4096;
    for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        const auto file = readWholeFile(root + path, largestFile);
        const auto text = trimmed(file.bytes);
        if (file.status == WholeFile::Status::read && isIdentifier(text))
            return std::string(text);
    }
    return "localhost";
}

} // namespace farview
