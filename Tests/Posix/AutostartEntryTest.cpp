#include "Platform/Posix/AutostartEntry.h"

#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace farview
{
namespace
{

constexpr const char* file = "config/autostart/com.quillon.Farview.desktop";

class AutostartEntryTest : public testing::Test
{
protected:
    std::string text() const
    {
        std::ifstream stream(folder.path(file));
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    mode_t modeOf(const char* name) const
    {
        struct stat status {
        };
        return ::stat(folder.path(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TemporaryFolder folder;
    ScopedEnvironment home{"HOME", folder.path().c_str()};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder.path("config").c_str()};
    AutostartEntry entry{EnvironmentUse::honoured};
    LoginItem::Command command = {"/opt/far view/item", "--at-login"};
};

TEST_F(AutostartEntryTest, ItsPresenceIsItsState)
{
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_TRUE(entry.enable(command));
    EXPECT_TRUE(entry.isEnabled());
    EXPECT_TRUE(std::filesystem::exists(folder.path(file)));
    EXPECT_TRUE(entry.disable());
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_FALSE(std::filesystem::exists(folder.path(file)));
    EXPECT_TRUE(entry.disable()) << "nothing is off already";
}

TEST_F(AutostartEntryTest, LiesInTheHomeWhereNoOtherFolderIsChosen)
{
    const ScopedEnvironment none("XDG_CONFIG_HOME", nullptr);
    const AutostartEntry other(EnvironmentUse::honoured);
    EXPECT_EQ(other.path(), folder.path(".config/autostart/com.quillon.Farview.desktop"));
}

TEST_F(AutostartEntryTest, HoldsWhatADesktopNeeds)
{
    ASSERT_TRUE(entry.enable(command));
    EXPECT_EQ(text().find("[Desktop Entry]\nType=Application\n"), 0u);
    EXPECT_NE(text().find("\nExec=\"/opt/far view/item\" \"--at-login\"\n"), std::string::npos);
    EXPECT_EQ(modeOf(file), 0644u);
    EXPECT_EQ(modeOf("config/autostart"), 0700u);
}

TEST_F(AutostartEntryTest, OneThatTheDesktopSwitchedOffIsOff)
{
    for (const char* line : {"Hidden=true", "Hidden = true ", "X-GNOME-Autostart-enabled=false"}) {
        folder.write(file, std::string("[Desktop Entry]\nType=Application\n") + line + "\n");
        EXPECT_FALSE(entry.isEnabled()) << line;
    }
    ASSERT_TRUE(entry.enable(command));
    EXPECT_TRUE(entry.isEnabled()) << "ticking the box means on";
}

TEST_F(AutostartEntryTest, WordsInOtherPlacesDoNotSwitchItOff)
{
    folder.write(file, "[Desktop Entry]\nHidden=false\nName=Hidden=true\n"
                       "[Desktop Action x]\nHidden=true\n");
    EXPECT_TRUE(entry.isEnabled());
}

TEST_F(AutostartEntryTest, WhatCannotBeReadIsOff)
{
    std::filesystem::create_directories(folder.path(file));
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_FALSE(entry.enable(command));
    EXPECT_FALSE(entry.disable());
    std::filesystem::remove(folder.path(file));
    folder.write(file, std::string(1024 * 1024, 'x'));
    EXPECT_FALSE(entry.isEnabled());
}

TEST_F(AutostartEntryTest, ALinkIsWrittenThroughAndRemovedItself)
{
    folder.write("elsewhere/entry", "[Desktop Entry]\n");
    std::filesystem::create_directories(folder.path("config/autostart"));
    std::filesystem::create_symlink(folder.path("elsewhere/entry"), folder.path(file));
    ASSERT_TRUE(entry.enable(command));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path(file)));
    EXPECT_NE(text().find("Exec="), std::string::npos);
    EXPECT_TRUE(entry.disable());
    EXPECT_TRUE(std::filesystem::exists(folder.path("elsewhere/entry")));
}

TEST_F(AutostartEntryTest, AFailureLeavesNothingBehind)
{
    folder.write("config/autostart", "a file where the folder should be");
    EXPECT_FALSE(entry.enable(command));
    EXPECT_FALSE(entry.isEnabled());
}

TEST_F(AutostartEntryTest, NoCommandAndOneThatIsNoAbsolutePathAreRefused)
{
    EXPECT_FALSE(entry.enable({}));
    EXPECT_FALSE(entry.enable({"item", "--at-login"}));
    EXPECT_FALSE(entry.enable({"/opt/item\nHidden=true"}));
    EXPECT_FALSE(std::filesystem::exists(folder.path(file)));
}

TEST(ExecLine, QuotesWhatADesktopWouldTakeForMore)
{
    EXPECT_EQ(execLine({"/a b", "--x"}), "\"/a b\" \"--x\"");
    EXPECT_EQ(execLine({"/100%"}), "\"/100%%\"");
    EXPECT_EQ(execLine({"/a\"b$c`d"}), R"("/a\\"b\\$c\\`d")");
    EXPECT_EQ(execLine({"/a\\b"}), R"("/a\\\\b")");
    EXPECT_EQ(execLine({"/tab\t"}), "");
    EXPECT_EQ(execLine({}), "");
}

} // namespace
} // namespace farview
