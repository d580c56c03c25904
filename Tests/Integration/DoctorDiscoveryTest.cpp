// The diagnosis as a program, beside discovery daemons of the test's own.

#include "Tests/Discovery/TestDaemon.h"
#include "Tests/Integration/DoctorRun.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace farview;

namespace
{

class DoctorDiscovery : public testing::Test
{
protected:
    DoctorRun examine(const std::string& systemBus) const
    {
        return {{{"DBUS_SYSTEM_BUS_ADDRESS", systemBus},
                 {"XDG_CONFIG_HOME", home.path("config")},
                 {"XDG_DATA_HOME", home.path("data")},
                 {"HOME", home.path()}},
                {"--json"}};
    }

    TemporaryFolder home;
};

TEST_F(DoctorDiscovery, FindsTheDaemon)
{
    TestDaemon daemon({"A"});
    const auto run = examine(daemon.busAddress());
    EXPECT_TRUE(run.finds("discovery.daemon")) << run.output();
    EXPECT_TRUE(run.finds("bus.system"));
    EXPECT_EQ(run.detail("discovery.interface", "interface"), "vA");
}

TEST_F(DoctorDiscovery, LooksByItselfWhenTheDaemonIsAbsent)
{
    const PrivateBus bus;
    const auto run = examine(bus.address());
    EXPECT_TRUE(run.finds("discovery.embedded")) << run.output();
}

TEST_F(DoctorDiscovery, FindsADaemonThatCannotBeReachedAndLetsNobodyElseLook)
{
    TestDaemon daemon({"A", {"disallow-other-stacks=yes"}});
    const auto run = examine("unix:path=" + home.path("no-bus"));
    EXPECT_TRUE(run.finds("discovery.refused")) << run.output();
    EXPECT_EQ(run.verdict(), "blocked");
    EXPECT_EQ(run.status(), 1);
}

TEST_F(DoctorDiscovery, FindsASystemBusThatDoesNotAnswerWithoutWaitingForIt)
{
    PrivateBus bus;
    bus.process().sendSignal(SIGSTOP);
    const auto run = examine(bus.address());
    EXPECT_TRUE(run.finds("bus.system-silent")) << run.output();
    EXPECT_EQ(run.status(), 1);
    bus.process().sendSignal(SIGCONT);
}

TEST_F(DoctorDiscovery, FindsADaemonThatDoesNotAnswer)
{
    TestDaemon daemon({"A"});
    daemon.process().sendSignal(SIGSTOP);
    const auto run = examine(daemon.busAddress());
    EXPECT_FALSE(run.finds("discovery.daemon")) << run.output();
    daemon.process().sendSignal(SIGCONT);
}

} // namespace
