#include "Benchmarks/StoredSettings.h"

#include "Common/FVEConstants.h"
#include "Platform/Platform.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace farview
{

StoredSettings::Folder::Folder(const std::string& parent) : mPath(parent + "/settings-XXXXXX")
{
    if (!mkdtemp(mPath.data()))
        throw std::runtime_error("no folder can be made in " + parent);
    mPath = std::filesystem::absolute(mPath);
}

StoredSettings::Folder::~Folder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

void StoredSettings::LoudLog::write(LogLevel /*level*/, std::string_view message)
{
    std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
}

StoredSettings::StoredSettings(const std::string& parent)
    : mFolder(parent), mConfiguration("XDG_CONFIG_HOME", mFolder.path().c_str()),
      mPreferences(PreferencesLocations(EnvironmentUse::honoured), mLog),
      mSettings(mPreferences, *Platform().distributedNotificationCenter)
{
    mSettings.setupDefaultValues();
}

std::string StoredSettings::path() const
{
    return mFolder.path() + "/farview/" + kApplicationID + ".plist";
}

void StoredSettings::changeElsewhere(bool flag)
{
    FilePreferences others(PreferencesLocations(EnvironmentUse::honoured), mLog);
    others.setAppValue(kAutoConnectOption, PropertyList(flag), kApplicationID);
    others.appSynchronize(kApplicationID);
}

} // namespace farview
