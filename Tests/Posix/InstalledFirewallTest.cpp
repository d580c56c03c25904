#include "Platform/Posix/InstalledFirewall.h"
#include "Tests/Posix/PreferencesFixture.h"

#include <filesystem>

namespace farview
{
namespace
{

class InstalledFirewallTest : public testing::Test
{
protected:
    FirewallState state() { return InstalledFirewall(mFolder.path()).state(); }
    void install(const char* path) { mFolder.write(path, ""); }

    TemporaryFolder mFolder;
};

TEST_F(InstalledFirewallTest, IsUnknownOnABareMachine)
{
    EXPECT_EQ(state(), FirewallState{});
    mFolder.write("etc/ufw/ufw.conf", "ENABLED=yes\n");
    EXPECT_EQ(state(), FirewallState{}) << "settings of what was removed";
}

TEST_F(InstalledFirewallTest, IsUfwAndActiveAsItsSettingSays)
{
    install("usr/sbin/ufw");
    EXPECT_EQ(state(), (FirewallState{FirewallKind::ufw, false, false}));
    for (const auto& [text, active] :
         {std::pair("# ENABLED=yes\nENABLED=no\n", false),
          std::pair("ENABLED=yes\nLOGLEVEL=low\n", true), std::pair("ENABLED=\"yes\"", true),
          std::pair("ENABLED=yes\nENABLED=no\n", false), std::pair("", false)}) {
        mFolder.write("etc/ufw/ufw.conf", text);
        EXPECT_EQ(state(), (FirewallState{FirewallKind::ufw, active, false})) << text;
    }
    install("usr/bin/gufw");
    EXPECT_TRUE(state().hasWindow);
}

TEST_F(InstalledFirewallTest, IsFirewalldAndActiveWhileItsUnitRuns)
{
    install("usr/sbin/firewalld");
    EXPECT_EQ(state(), (FirewallState{FirewallKind::firewalld, false, false}));
    install("usr/bin/firewall-config");
    mFolder.write("run/systemd/units/other", "");
    // To nowhere, as the service manager makes it.
    std::filesystem::create_symlink("0123456789abcdef",
                                    mFolder.path("run/systemd/units/invocation:firewalld.service"));
    EXPECT_EQ(state(), (FirewallState{FirewallKind::firewalld, true, true}));
}

TEST_F(InstalledFirewallTest, OfTwoTheActiveOneCounts)
{
    install("usr/sbin/ufw");
    install("usr/sbin/firewalld");
    EXPECT_EQ(state().kind, FirewallKind::ufw);
    install("run/firewalld.pid");
    EXPECT_EQ(state(), (FirewallState{FirewallKind::firewalld, true, false}));
    mFolder.write("etc/ufw/ufw.conf", "ENABLED=yes\n");
    EXPECT_EQ(state(), (FirewallState{FirewallKind::ufw, true, false}));
}

TEST_F(InstalledFirewallTest, SurvivesSettingsThatCannotBeRead)
{
    install("usr/sbin/ufw");
    mFolder.write("etc/ufw/ufw.conf/folder", "");
    EXPECT_FALSE(state().active);
}

} // namespace
} // namespace farview
