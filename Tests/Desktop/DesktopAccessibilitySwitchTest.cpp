#include "Platform/Desktop/Rights/DesktopAccessibilitySwitch.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace farview
{
namespace
{

using Lifetime = AccessibilitySwitch::Lifetime;
using Problem = AccessibilitySwitch::Problem;
using State = AccessibilitySwitch::State;

/// A session with the accessibility service, and with the settings tool that a test writes.
class DesktopAccessibilitySwitchTest : public testing::Test
{
protected:
    void startService(const char* kind)
    {
        mService.emplace(std::vector<std::string>{FARVIEW_TEST_PEER, "accessibility", kind});
        ASSERT_TRUE(waitUntil([this] { return mBus.hasOwner("org.a11y.Bus"); }));
    }
    /// A tool that keeps the setting in a file, or does what is given instead.
    void installTool(const std::string& instead = "")
    {
        mFolder.write("bin/gsettings",
                      "#!/bin/sh\n" + instead +
                          "\n[ \"$2 $3\" = 'org.gnome.desktop.interface toolkit-accessibility' ] "
                          "|| exit 1\n"
                          "case $1 in writable) echo true ;; set) echo \"$4\" >'" +
                          mStored + "' ;; get) read value <'" + mStored +
                          "' && echo $value ;; esac\n",
                      true);
    }
    void observe()
    {
        mSubscription = mSwitch.observe([this](const State& state) { mTold = state; });
        ASSERT_TRUE(waitUntil([this] { return mTold && mTold->lifetime; }));
    }
    std::optional<Problem> set(bool on)
    {
        std::optional<Problem> result;
        mSwitch.set(on, [&](Problem problem) { result = problem; });
        waitUntil([&] { return result.has_value(); });
        return result;
    }
    std::string stored() const
    {
        std::ostringstream text;
        text << std::ifstream(mStored).rdbuf();
        return text.str();
    }

    TemporaryFolder mFolder;
    std::string mStored = mFolder.path("stored");
    ScopedEnvironment mPath{"PATH", (mFolder.path("bin") + ":/usr/bin:/bin").c_str()};
    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    FakeLog mLog;
    TestBus mBus{mLog};
    std::optional<ChildProcess> mService;
    std::optional<State> mTold;
    Subscription mSubscription;
    DesktopAccessibilitySwitch mSwitch{mBus};
};

TEST_F(DesktopAccessibilitySwitchTest, TheLastingSettingIsChangedTooWhereThereIsOne)
{
    installTool();
    startService("off");
    observe();
    EXPECT_EQ(mTold, (State{false, Problem::none, Lifetime::kept}));
    EXPECT_EQ(set(true), Problem::none);
    EXPECT_EQ(mTold, (State{true, Problem::none, Lifetime::kept}));
    EXPECT_EQ(stored(), "true\n");
    EXPECT_EQ(set(false), Problem::none);
    EXPECT_EQ(stored(), "false\n");
}

TEST_F(DesktopAccessibilitySwitchTest, ASettingThatIsNotStoredHoldsForTheSessionOnly)
{
    installTool("[ $1 = get ] && { echo false; exit 0; }");
    startService("off");
    observe();
    EXPECT_EQ(mTold->lifetime, Lifetime::kept);
    EXPECT_EQ(set(true), Problem::none);
    EXPECT_EQ(mTold, (State{true, Problem::none, Lifetime::session}));
}

TEST_F(DesktopAccessibilitySwitchTest, ASettingThatMayNotBeChangedIsLeftAlone)
{
    installTool("[ $1 = writable ] && { echo false; exit 0; }");
    startService("off");
    observe();
    EXPECT_EQ(mTold->lifetime, Lifetime::session);
    EXPECT_EQ(set(true), Problem::none);
    EXPECT_EQ(stored(), "");
}

TEST_F(DesktopAccessibilitySwitchTest, AToolThatCrashesOrPrintsNonsenseIsNoSetting)
{
    startService("off");
    for (const char* behaviour :
         {"kill -9 $$", "echo nonsense; exit 0", "exit 3", "head -c 100000 /dev/zero; exit 0"}) {
        installTool(behaviour);
        mTold.reset();
        observe();
        EXPECT_EQ(mTold->lifetime, Lifetime::session) << behaviour;
    }
}

TEST_F(DesktopAccessibilitySwitchTest, AServiceThatForgetsTheChangeIsToldApart)
{
    installTool("exit 1");
    startService("stubborn");
    observe();
    EXPECT_EQ(set(true), Problem::notTaken);
    EXPECT_EQ(mTold->isOn, false);
}

TEST_F(DesktopAccessibilitySwitchTest, AServiceThatHangsBlocksNothingAndIsToldApart)
{
    installTool("exit 1");
    startService("off");
    observe();
    mService->sendSignal(SIGSTOP);
    std::optional<Problem> result;
    mSwitch.set(true, [&](Problem problem) { result = problem; });
    EXPECT_FALSE(result);
    EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result, Problem::noAnswer);
}

TEST_F(DesktopAccessibilitySwitchTest, AServiceThatGoesAndComesIsFollowed)
{
    installTool("exit 1");
    startService("on");
    observe();
    ASSERT_TRUE(waitUntil([this] { return mTold->isOn == true; }));
    mService.reset();
    EXPECT_TRUE(waitUntil([this] { return mTold->problem == Problem::noService; }));
    EXPECT_EQ(mTold->isOn, std::nullopt);
    startService("on");
    EXPECT_TRUE(waitUntil([this] { return mTold->isOn == true; }));
}

TEST_F(DesktopAccessibilitySwitchTest, TheBusMayRestart)
{
    installTool("exit 1");
    startService("on");
    observe();
    mPrivateBus.stop();
    EXPECT_TRUE(waitUntil([this] { return mTold->problem == Problem::noService; }));
    mPrivateBus.start();
    ASSERT_TRUE(waitUntil([this] { return mBus.isConnected(); }));
    startService("off");
    EXPECT_TRUE(waitUntil([this] { return mTold->isOn == false; }));
    EXPECT_EQ(set(true), Problem::none);
}

TEST_F(DesktopAccessibilitySwitchTest, ASecondObserverTakesThePlaceOfTheFirst)
{
    installTool("exit 1");
    startService("off");
    observe();
    observe(); // the end of the first subscription must not end the second
    EXPECT_EQ(set(true), Problem::none);
    EXPECT_EQ(mTold->isOn, true);
}

TEST(DesktopAccessibilitySwitch, EndsWhileEverythingIsUnderWay)
{
    TemporaryFolder folder;
    folder.write("bin/gsettings", "#!/bin/sh\nsleep 30\n", true);
    const ScopedEnvironment path("PATH", (folder.path("bin") + ":/usr/bin:/bin").c_str());
    PrivateBus bus;
    const SessionBusScope scope(bus.address());
    FakeLog log;
    TestBus session(log);
    bool isCalled = false;
    Subscription subscription;
    {
        DesktopAccessibilitySwitch accessibility(session);
        subscription = accessibility.observe([&](const State&) { isCalled = true; });
        accessibility.set(true, [&](Problem) { isCalled = true; });
    }
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(isCalled);
}

} // namespace
} // namespace farview
