#pragma once

#include "Platform/FileManager.h"
#include "Platform/Preferences.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace farview
{

/// The user's settings as they are, with changes that nobody else sees and that end with this
/// object.
class OverlayPreferences final : public Preferences
{
public:
    /// `stored` is only read, and must outlive this.
    explicit OverlayPreferences(Preferences& stored) : mStored(stored) {}

    std::optional<PropertyList> copyValue(const std::string& key, const std::string& applicationID,
                                          PreferencesUser user, PreferencesHost host) override;
    void setAppValue(const std::string& key, std::optional<PropertyList> value,
                     const std::string& applicationID) override;
    bool synchronize(const std::string& applicationID, PreferencesUser user,
                     PreferencesHost host) override;
    bool appSynchronize(const std::string& applicationID) override;
    Subscription observeLateWrites(std::function<void()>) override { return {}; }

private:
    Preferences& mStored;
    std::map<std::pair<std::string, std::string>, std::optional<PropertyList>> mChanges;
};

/// The user's files as they are, with changes that nobody else sees.
class OverlayFileManager final : public FileManager
{
public:
    /// `stored` is only read, and must outlive this.
    explicit OverlayFileManager(FileManager& stored) : mStored(stored) {}

    bool fileExistsAtPath(const std::string& path) override;
    bool createDirectoryAtPath(const std::string& path) override;
    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string& path) override;
    bool writePropertyList(const PropertyList& list, const std::string& path) override;
    bool writeData(std::span<const std::uint8_t> bytes, const std::string& path) override;

private:
    FileManager& mStored;
    std::set<std::string> mFolders;
    std::map<std::string, PropertyList> mFiles;
    std::set<std::string> mOtherFiles;
};

} // namespace farview
