// The screen that the diagnosis tries, on real desktops.

#include "Tests/Integration/DoctorRun.h"
#include "Tests/Support/PrivateGnome.h"
#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace farview
{
namespace
{

/// A computer without Farview, but for the diagnosis.
class DoctorTrial : public testing::Test
{
protected:
    DoctorRun run(const std::vector<std::string>& arguments = {"--try-screen", "--json"})
    {
        return {mEnvironment, arguments};
    }

    TemporaryFolder mRoot;
    ChildProcess::Environment mEnvironment{{"FARVIEW_SYSTEM_ROOT", mRoot.path()},
                                           {"FARVIEW_LOCAL_ROOT", mRoot.path()},
                                           {"LC_ALL", "C.UTF-8"}};
};

TEST_F(DoctorTrial, ShowsAScreenOfAnXServerAndTakesItAway)
{
    const PrivateXServer server;
    ScreenArranger(server.display()).showOnce(1);
    const auto before = describedScreens(server.display());
    const auto trial = run();
    EXPECT_EQ(trial.status(), 0) << trial.output();
    EXPECT_EQ(trial.detail("screen.trial-appeared", "pixels"), "1024x768") << trial.output();
    EXPECT_NE(trial.detail("screen.trial-pictures", "count"), "0");
    EXPECT_TRUE(trial.finds("screen.trial-pointer"));
    EXPECT_EQ(trial.detail("screen.trial-input", "keys"), "yes");
    EXPECT_EQ(describedScreens(server.display()), before);
}

TEST_F(DoctorTrial, TakesTheScreenAwayWhenItIsInterrupted)
{
    const PrivateXServer server;
    ScreenArranger(server.display()).showOnce(1);
    const auto before = describedScreens(server.display());
    const auto out = mRoot.path("out");
    ChildProcess doctor({"sh", "-c", "exec " FARVIEW_DOCTOR " --try-screen --json >'" + out + "'"},
                        mEnvironment);
    ASSERT_TRUE(waitUntil([&] { return describedScreens(server.display()) != before; }));
    doctor.sendSignal(SIGINT);
    const auto status = doctor.waitForEnd();
    ASSERT_TRUE(status && WIFEXITED(*status));
    EXPECT_EQ(WEXITSTATUS(*status), 3);
    EXPECT_EQ(describedScreens(server.display()), before);
}

TEST_F(DoctorTrial, ShowsAScreenOfGNOME)
{
    PrivateGnome desktop;
    const auto trial = run();
    EXPECT_EQ(trial.status(), 0) << trial.output();
    EXPECT_EQ(trial.detail("screen.trial-appeared", "pixels"), "1024x768") << trial.output();
    EXPECT_TRUE(trial.finds("screen.trial-pictures"));
    EXPECT_EQ(trial.detail("screen.trial-input", "touch"), "yes");
}

TEST_F(DoctorTrial, SaysOfKDEWithoutAGraphicsDeviceThatItMakesNone)
{
    const ScopedEnvironment folders("XDG_DATA_DIRS", FARVIEW_DATA_FOLDER ":/usr/share");
    const PrivatePlasma desktop(1, "");
    const auto trial = run();
    EXPECT_EQ(trial.status(), 1);
    EXPECT_TRUE(trial.finds("screen.desktop")) << trial.output();
    EXPECT_TRUE(trial.finds("screen.failed")) << trial.output();
    EXPECT_EQ(trial.detail("display.desktop-version", "version").substr(0, 5), "KWin ");
}

TEST_F(DoctorTrial, SaysThatKDEDoesNotTrustTheProgram)
{
    const PrivatePlasma desktop(1, "");
    const auto trial = run({"--try-screen"});
    EXPECT_EQ(trial.status(), 1);
    EXPECT_NE(trial.output().find("[Problem] The desktop does not let Farview add a screen."),
              std::string::npos)
        << trial.output();
}

TEST_F(DoctorTrial, IsNoOtherCommand)
{
    EXPECT_EQ(run({"--try-screen", "--stop", "Desk"}).status(), 2);
}

} // namespace
} // namespace farview
