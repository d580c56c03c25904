// What the panel shows when its screen server is in trouble.

#include "Tests/Integration/PaneSystem.h"

#include <csignal>

namespace farview
{
namespace
{

using std::chrono::seconds;

/// The watchdog looks every ten seconds.
constexpr auto watchdogLimit = seconds(12);

class PaneServerFaults : public PaneSystem
{
protected:
    pid_t onlyServer() const
    {
        const auto all = servers();
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? -1 : all.front();
    }
    pid_t keeper() const
    {
        for (const auto& each : processesBelow(::getpid())) {
            if (each.shortName == "farview-keeper")
                return each.pid;
        }
        return -1;
    }
    /// As when the machine runs out of memory: nobody is left to start it again.
    void killServerAndKeeper()
    {
        const pid_t server = onlyServer();
        ASSERT_GT(keeper(), 0);
        ::kill(server, SIGSTOP); // so that it does not hear of its keeper's end
        ::kill(keeper(), SIGKILL);
        ::kill(server, SIGKILL);
        ASSERT_TRUE(serversAre(0));
    }
};

TEST_F(PaneServerFaults, AServerThatCrashesIsStartedAgainAndThePaneFollows)
{
    showConnectedToDesk();
    const pid_t crashed = onlyServer();
    // Not SIGSEGV: a sanitizer makes an ordinary end of it.
    ::kill(crashed, SIGABRT);
    EXPECT_TRUE(selectsNothing()) << "the server that follows says that it has no device";
    ASSERT_TRUE(serverAnswers());
    EXPECT_NE(onlyServer(), crashed);
    EXPECT_EQ(switchState(), 1);
    EXPECT_TRUE(deviceSays("The host is gone")) << text("device.log");
    EXPECT_TRUE(selects("Desk")) << "the device that was chosen comes back";
}

TEST_F(PaneServerFaults, NoDeviceChosenWhileTheServerIsCrashedHoldsForTheNextOne)
{
    showConnectedToDesk();
    ::kill(onlyServer(), SIGABRT);
    ASSERT_TRUE(serversAre(0));
    pane->takeNoVirtualScreenFrom(nullptr);
    ASSERT_TRUE(serverAnswers());
    ASSERT_TRUE(deviceSays("The host is gone")) << text("device.log");
    runLoopFor(seconds(4));
    EXPECT_EQ(pane->selectedNetService(), nullptr);
    EXPECT_EQ(preferences().currentVirtualScreenDevice(), "");
}

TEST_F(PaneServerFaults, AServerThatIsKilledForGoodTurnsTheSwitchOffAndOffAndOnStartsItAgain)
{
    showConnectedToDesk();
    killServerAndKeeper();
    EXPECT_TRUE(switchTurns(0, watchdogLimit));
    EXPECT_EQ(preferences().currentState(), 1) << "what the user wanted is kept";

    pane->offTextPressed(nullptr);
    turnOn();
    EXPECT_EQ(switchState(), 1);
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk"));
}

TEST_F(PaneServerFaults, AServerThatIsKilledForGoodIsStartedByTheNextShowing)
{
    showConnectedToDesk();
    hide();
    killServerAndKeeper();
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 0);
    show();
    ASSERT_TRUE(serverAnswers());
    EXPECT_TRUE(selectsNothing());
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 1);
}

TEST_F(PaneServerFaults, AKeeperThatIsKilledTakesItsServerAlongWithAGoodbye)
{
    showConnectedToDesk();
    ::kill(keeper(), SIGKILL);
    EXPECT_TRUE(selectsNothing(seconds(3)));
    EXPECT_TRUE(serversAre(0, seconds(3)));
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 0);
}

TEST_F(PaneServerFaults,
       AServerThatStandsStillIsAnErrorAfterFifteenSecondsAndIsForgivenWhenItGoesOn)
{
    showWithDesk();
    const pid_t server = onlyServer();
    ::kill(server, SIGSTOP);
    const auto chosen = std::chrono::steady_clock::now();
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(showsError(errorLimit + seconds(1)));
    EXPECT_GE(std::chrono::steady_clock::now() - chosen, errorLimit - seconds(1));
    pane->watchdogTimerOperation(nullptr);
    EXPECT_EQ(switchState(), 1) << "its process is there";

    ::kill(server, SIGCONT);
    EXPECT_TRUE(selects("Desk")) << "the request was waiting for it";
    EXPECT_EQ(onlyServer(), server);
}

TEST_F(PaneServerFaults, OffReachesAServerThatStoodStill)
{
    showConnectedToDesk();
    const pid_t server = onlyServer();
    ::kill(server, SIGSTOP);
    pane->offTextPressed(nullptr);
    EXPECT_EQ(pane->virtualScreenSelectionPopup()->title(), "Farview: Off");
    ::kill(server, SIGCONT);
    EXPECT_TRUE(serversAre(0, seconds(5)));
}

} // namespace
} // namespace farview
