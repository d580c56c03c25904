#include "Platform/Desktop/OverlayBodies.h"

namespace farview
{

std::optional<PropertyList> OverlayPreferences::copyValue(const std::string& key,
                                                          const std::string& applicationID,
                                                          PreferencesUser user,
                                                          PreferencesHost host)
{
    const auto changed = mChanges.find({applicationID, key});
    const bool isWritable = user == PreferencesUser::current && host == PreferencesHost::any;
    return isWritable && changed != mChanges.end()
               ? changed->second
               : mStored.copyValue(key, applicationID, user, host);
}

void OverlayPreferences::setAppValue(const std::string& key, std::optional<PropertyList> value,
                                     const std::string& applicationID)
{
    mChanges[{applicationID, key}] = std::move(value);
}

bool OverlayPreferences::synchronize(const std::string&, PreferencesUser, PreferencesHost)
{
    return true;
}

bool OverlayPreferences::appSynchronize(const std::string&) { return true; }

bool OverlayFileManager::fileExistsAtPath(const std::string& path)
{
    return mFiles.contains(path) || mOtherFiles.contains(path) || mFolders.contains(path) ||
           mStored.fileExistsAtPath(path);
}

bool OverlayFileManager::createDirectoryAtPath(const std::string& path)
{
    mFolders.insert(path);
    return true;
}

std::optional<PropertyList>
OverlayFileManager::propertyListWithContentsOfFile(const std::string& path)
{
    const auto written = mFiles.find(path);
    return written == mFiles.end() ? mStored.propertyListWithContentsOfFile(path)
                                   : std::optional(written->second);
}

bool OverlayFileManager::writePropertyList(const PropertyList& list, const std::string& path)
{
    mFiles.insert_or_assign(path, list);
    return true;
}

bool OverlayFileManager::writeData(std::span<const std::uint8_t>, const std::string& path)
{
    mFiles.erase(path);
    mOtherFiles.insert(path);
    return true;
}

} // namespace farview
