#include "Common/NSURL_Additions.h"

#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

namespace
{

constexpr const char* usersFolder = "/home/user/.local/share/farview/PreferencePanes/";
constexpr const char* localFolder = "/usr/local/lib/farview/PreferencePanes/";
constexpr const char* systemFolder = "/usr/lib/farview/PreferencePanes/";

class PaneFinders : public testing::Test
{
protected:
    void addPane(const std::string& folder, const std::string& name)
    {
        fake.fileManager.addFile(folder + name);
    }
    std::optional<std::string> found(const std::string& name)
    {
        const auto url = findPrefPaneLocation(name);
        return url ? std::optional(url->path()) : std::nullopt;
    }

    farview::FakePlatform fake;
    farview::Platform::Scope scope{fake.platform()};
};

TEST_F(PaneFinders, ThePathOfTheSettingsApplicationIsFixedAndUnchecked)
{
    EXPECT_EQ(findSystemPreferences().path(), "/Application/System Preferences.app");
    EXPECT_TRUE(findSystemPreferences().isFileURL());
}

TEST_F(PaneFinders, TheUsersPaneComesBeforeTheLocalAndTheSystems)
{
    EXPECT_EQ(found(kPrefPaneName), std::nullopt);
    addPane(systemFolder, kPrefPaneName);
    EXPECT_EQ(found(kPrefPaneName), std::string(systemFolder) + kPrefPaneName);
    addPane(localFolder, kPrefPaneName);
    EXPECT_EQ(found(kPrefPaneName), std::string(localFolder) + kPrefPaneName);
    addPane(usersFolder, kPrefPaneName);
    EXPECT_EQ(found(kPrefPaneName), std::string(usersFolder) + kPrefPaneName);
}

TEST_F(PaneFinders, ANameIsTakenAsItIs)
{
    addPane(systemFolder, kDisplaysPrefPaneName);
    EXPECT_EQ(found("Displays"), std::nullopt);
    addPane(systemFolder, "Displays");
    EXPECT_EQ(found("Displays"), std::string(systemFolder) + "Displays");
}

TEST_F(PaneFinders, ASystemPaneIsFoundByItsBaseName)
{
    addPane(systemFolder, "UniversalAccessPref.prefPane");
    const auto url = findSystemPrefPaneLocation("UniversalAccessPref");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->path(), std::string(systemFolder) + "UniversalAccessPref.prefPane");
    EXPECT_EQ(findSystemPrefPaneLocation("UniversalAccessPref.prefPane"), std::nullopt);
}

TEST_F(PaneFinders, ASystemPaneIsNeverLookedForElsewhere)
{
    addPane(usersFolder, "UniversalAccessPref.prefPane");
    addPane(localFolder, "UniversalAccessPref.prefPane");
    EXPECT_EQ(findSystemPrefPaneLocation("UniversalAccessPref"), std::nullopt);
}

} // namespace
