// The box for HiDPI resolutions with polkit as it is: a private computer on which an ordinary user
// has a panel, and an administrator a password.

#include "Tests/Integration/OwnComputer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;
using testing::HasSubstr;

class HiDPIRights : public OwnComputer
{
protected:
    /// Clicks the box and confirms; everything is over when the box can be clicked again.
    void clickAndConfirm()
    {
        tell("press");
        tell("ok");
        EXPECT_TRUE(sees("enabled, no window")) << panelLog();
    }
    void askForAPasswordThatNobodyTypes()
    {
        start("AUTH_ADMIN_KEEP");
        openPanel();
        startAgent("wait");
        tell("press");
        tell("ok");
        ASSERT_TRUE(waitFor([this] { return agentSays("asked"); }));
    }
    void expectNothingHasChanged()
    {
        EXPECT_FALSE(fs::exists("/etc/farview"));
        EXPECT_EQ(settingFor("fvother"), "not offered");
    }
    void expectRefusal(const std::string& code)
    {
        EXPECT_TRUE(panelSays("Failed to create AuthorizationRef, return code " + code))
            << panelLog();
        expectNothingHasChanged();
    }
};

TEST_F(HiDPIRights, AllowedTheSettingIsStoredAndEveryUserReadsIt)
{
    start("YES");
    openPanel();
    clickAndConfirm();
    EXPECT_EQ(settingFor("fvother"), "offered") << panelLog();
    EXPECT_EQ(settingFor("fvuser"), "offered");
    clickAndConfirm();
    EXPECT_EQ(settingFor("fvother"), "not offered");
    EXPECT_FALSE(panelSays("Error")) << panelLog();
    EXPECT_FALSE(panelSays("Failed")) << panelLog();
}

TEST_F(HiDPIRights, DeniedByARuleItIsSaidBeforehandAndNothingChanges)
{
    start("NO");
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("This session may not change the setting."));
    tell("ok");
    EXPECT_TRUE(sees("box on enabled, no window")) << "as it was clicked";
    expectRefusal("-60005");
}

TEST_F(HiDPIRights, WithoutALocalSessionThePolicyItselfDenies)
{
    start("");
    openPanel();
    clickAndConfirm();
    expectRefusal("-60005");
}

TEST_F(HiDPIRights, ASystemBusThatStandsStillDoesNotHoldThePanel)
{
    start("YES");
    openPanel();
    bus->sendSignal(SIGSTOP);
    // The panel obeys on, and says before long what it knows.
    EXPECT_THAT(tell("press"), HasSubstr("box on enabled, window"));
    EXPECT_TRUE(sees("The system cannot be asked for administrator rights.")) << panelLog();
    tell("ok");
    EXPECT_TRUE(sees("enabled, no window")) << panelLog();
    expectRefusal("-60008");
    bus->sendSignal(SIGCONT);
    clickAndConfirm();
    EXPECT_EQ(settingFor("fvother"), "offered") << panelLog();
}

TEST_F(HiDPIRights, DismissedNothingChanges)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    startAgent("dismiss");
    tell("press");
    tell("ok");
    EXPECT_TRUE(sees("enabled, no window")) << panelLog();
    EXPECT_TRUE(agentSays("asked com.quillon.displayresolutionson: Um allen Benutzern"));
    expectRefusal("-60006");
}

TEST_F(HiDPIRights, APasswordTypedOnceServesBothDirections)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    startTyping("secret");
    tell("press");
    tell("ok");
    EXPECT_TRUE(sees("box on enabled, no window")) << typing->printed() << panelLog();
    EXPECT_EQ(settingFor("fvother"), "offered") << typing->printed() << panelLog();
    EXPECT_EQ(typing->timesTyped(), 1);
    clickAndConfirm();
    EXPECT_EQ(settingFor("fvother"), "not offered") << typing->printed() << panelLog();
    EXPECT_EQ(typing->timesTyped(), 1);
}

TEST_F(HiDPIRights, WhereNoPasswordIsKeptItIsAskedForAtEachStep)
{
    start("AUTH_ADMIN");
    openPanel();
    startTyping("secret");
    clickAndConfirm();
    EXPECT_EQ(settingFor("fvother"), "offered") << typing->printed() << panelLog();
    EXPECT_EQ(typing->timesTyped(), 2);
}

TEST_F(HiDPIRights, AWrongPasswordIsDenied)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    startTyping("guess");
    clickAndConfirm();
    EXPECT_GE(typing->timesTyped(), 1);
    expectRefusal("-60005");
}

TEST_F(HiDPIRights, WhereNobodyCanBeAskedTheWindowSaysSoBeforehand)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("Nothing in this session can ask for a password."));
    tell("ok");
    EXPECT_TRUE(sees("enabled, no window"));
    expectRefusal("-60007");
}

TEST_F(HiDPIRights, WhereAnAgentRunsTheWindowSaysNothing)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    startAgent("wait");
    tell("press");
    // What would be said comes over the bus: others are asked the same meanwhile, and answered.
    for (int time = 0; time < 20; ++time)
        EXPECT_THAT(tell("look"), HasSubstr("window: \n"));
    EXPECT_FALSE(agentSays("asked"));
}

TEST_F(HiDPIRights, WithoutPolkitTheWindowSaysSoBeforehand)
{
    startBus();
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("The system cannot be asked for administrator rights."));
    tell("ok");
    EXPECT_TRUE(sees("enabled, no window"));
    expectRefusal("-60008");
}

TEST_F(HiDPIRights, WithoutASystemBusThereIsNoPolkitEither)
{
    openPanel();
    clickAndConfirm();
    expectRefusal("-60008");
}

TEST_F(HiDPIRights, WhileThePasswordIsAwaitedThePanelGoesOnAndTheBoxIsDisabled)
{
    start("AUTH_ADMIN_KEEP");
    openPanel();
    startAgent("wait");
    tell("press");
    EXPECT_THAT(tell("ok"), HasSubstr("box on disabled, window: Waiting"));
    EXPECT_TRUE(waitFor([this] { return agentSays("asked"); }));
    EXPECT_THAT(tell("look"), HasSubstr("box on disabled, window: Waiting"));
    expectNothingHasChanged();
}

TEST_F(HiDPIRights, APanelThatGoesTakesItsQuestionBack)
{
    ASSERT_NO_FATAL_FAILURE(askForAPasswordThatNobodyTypes());
    tell("drop");
    EXPECT_TRUE(panel->isRunning());
    panel->kill();
    EXPECT_TRUE(waitFor([this] { return agentSays("taken back"); }));
    expectNothingHasChanged();
}

TEST_F(HiDPIRights, PolkitThatEndsWhileThePasswordIsAwaitedIsNoPolkit)
{
    ASSERT_NO_FATAL_FAILURE(askForAPasswordThatNobodyTypes());
    polkit->kill();
    EXPECT_TRUE(sees("enabled, no window"));
    expectRefusal("-60008");
}

TEST_F(HiDPIRights, ASystemBusThatEndsWhileThePasswordIsAwaitedIsNoPolkit)
{
    ASSERT_NO_FATAL_FAILURE(askForAPasswordThatNobodyTypes());
    bus->kill();
    EXPECT_TRUE(sees("enabled, no window"));
    expectRefusal("-60008");
}

TEST_F(HiDPIRights, AFolderThatOthersCanWriteIsNamedAndTheToolNotRun)
{
    start("YES");
    ::chmod("/opt/farview/lib", 0775);
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("users other than root can change /opt/farview/lib,")) << panelLog();
    tell("ok");
    EXPECT_TRUE(sees("enabled, no window"));
    EXPECT_TRUE(panelSays("Error: -60031")) << panelLog();
    expectNothingHasChanged();
}

TEST_F(HiDPIRights, AToolOfAnOrdinaryUserIsNotRun)
{
    start("YES");
    ASSERT_EQ(::chown(tool("on").c_str(), 4801, 4801), 0);
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("can change " + tool("on")));
    tell("ok");
    EXPECT_TRUE(panelSays("Error: -60031")) << panelLog();
    expectNothingHasChanged();
}

TEST_F(HiDPIRights, AToolThatIsMissingIsSaidToBeMissing)
{
    start("YES");
    fs::remove(tool("on"));
    openPanel();
    tell("press");
    EXPECT_TRUE(sees("a part of Farview is missing"));
    tell("ok");
    EXPECT_TRUE(panelSays("Error: -60031")) << panelLog();
    expectNothingHasChanged();
}

TEST_F(HiDPIRights, AToolThatFailsIsAnErrorInTheLog)
{
    start("YES");
    // A file is in the way of the folder.
    std::FILE* file = std::fopen("/etc/farview", "w");
    std::fclose(file);
    openPanel();
    clickAndConfirm();
    EXPECT_TRUE(panelSays("Error: -60031")) << panelLog();
    EXPECT_TRUE(panelSays("/etc/farview/ByHost/")) << "what the tool said: " << panelLog();
    EXPECT_EQ(settingFor("fvother"), "not offered");
}

TEST_F(HiDPIRights, ThePolicyAsksTheAdministratorOfAnActiveSessionOnly)
{
    start("");
    for (const char* which : {"on", "off"}) {
        const std::string action = std::string("com.quillon.displayresolutions") + which;
        const auto [status, output] = run({"pkaction", "--verbose", "--action-id", action});
        EXPECT_EQ(status, 0);
        EXPECT_THAT(output, testing::ContainsRegex("implicit any: *no"));
        EXPECT_THAT(output, testing::ContainsRegex("implicit inactive: *no"));
        EXPECT_THAT(output, testing::ContainsRegex("implicit active: *auth_admin_keep"));
        EXPECT_THAT(output, HasSubstr("policykit.exec.path -> " + tool(which)));
        EXPECT_THAT(output, HasSubstr("message:           Authentication is required"));
    }
}

} // namespace
} // namespace farview
