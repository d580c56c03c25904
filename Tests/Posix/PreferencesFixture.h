#pragma once

#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace farview
{

/// The domain of these tests.
inline const std::string domain = "com.example.Domain";

inline std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline unsigned modeOf(const std::string& path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777u : 0u;
}

/// A property list with one text.
inline std::string listWith(const std::string& key, const std::string& text)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n\t<key>" +
           key + "</key>\n\t<string>" + text + "</string>\n</dict>\n</plist>\n";
}

/// Preferences in private folders. Another `make()` stands for another process.
class PreferencesFixture : public testing::Test
{
protected:
    std::unique_ptr<FilePreferences> make()
    {
        return std::make_unique<FilePreferences>(locations(), mLog);
    }
    static PreferencesLocations locations()
    {
        return PreferencesLocations(EnvironmentUse::honoured);
    }
    static std::string path(PreferencesUser user = PreferencesUser::current,
                            PreferencesHost host = PreferencesHost::any)
    {
        return locations().location(domain, user, host).path;
    }
    void writeFile(const std::string& contents) { mFolder.write(below(path()), contents); }
    std::string below(const std::string& path) const
    {
        return path.substr(mFolder.path().size() + 1);
    }
    /// The names in the folder of the user's preferences, sorted.
    static std::vector<std::string> names()
    {
        std::vector<std::string> found;
        for (const auto& each :
             std::filesystem::directory_iterator(std::filesystem::path(path()).parent_path()))
            found.push_back(each.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }
    std::optional<PropertyList> read(const std::string& key = "key")
    {
        return mPreferences->copyAppValue(key, domain);
    }
    bool store(std::optional<PropertyList> value, const std::string& key = "key")
    {
        mPreferences->setAppValue(key, std::move(value), domain);
        return mPreferences->appSynchronize(domain);
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mConfig{"XDG_CONFIG_HOME", mFolder.path("config").c_str()};
    ScopedEnvironment mSystem{"FARVIEW_SYSTEM_CONFIG", mFolder.path("system").c_str()};
    FakeLog mLog;
    std::unique_ptr<FilePreferences> mPreferences = make();
};

} // namespace farview
