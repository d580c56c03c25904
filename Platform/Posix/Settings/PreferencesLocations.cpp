#include "Platform/Posix/Settings/PreferencesLocations.h"

#include "Platform/Posix/Settings/MachineIdentifier.h"

namespace farview
{
namespace
{

/// Domains come from code, but a slip must not reach another folder.
bool canNameAFile(const std::string& domain)
{
    constexpr std::size_t longest = 200;
    return !domain.empty() && domain.size() <= longest && !domain.starts_with('.') &&
           domain.find('/') == std::string::npos && domain.find('\0') == std::string::npos;
}

std::string systemFolder(const Environment& environment)
{
    const auto moved = environment.folder("FARVIEW_SYSTEM_CONFIG");
    return moved.empty() ? "/etc/farview" : moved;
}

} // namespace

PreferencesLocations::PreferencesLocations(EnvironmentUse use)
    : mUserFolder(Environment(use).configHome() + "/farview"),
      mSystemFolder(systemFolder(Environment(use))), mMachine(machineIdentifier())
{
}

PreferencesLocation PreferencesLocations::location(const std::string& domain, PreferencesUser user,
                                                   PreferencesHost host) const
{
    const bool isSystem = user == PreferencesUser::any;
    PreferencesLocation location;
    location.fileMode = isSystem ? 0644 : 0600;
    location.folderMode = isSystem ? 0755 : 0700;
    if (!canNameAFile(domain))
        return location;
    location.path = isSystem ? mSystemFolder : mUserFolder;
    if (host == PreferencesHost::current)
        location.path += "/ByHost/" + domain + "." + mMachine + ".plist";
    else
        location.path += "/" + domain + ".plist";
    return location;
}

} // namespace farview
