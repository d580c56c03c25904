// The panel when the discovery daemon under it goes and returns.

#include "Tests/Integration/PaneSystem.h"

#include <csignal>

namespace farview
{
namespace
{

using std::chrono::seconds;

/// A discovery daemon on this host, with a bus of its own. What it keeps below /run is private.
class OwnDaemon
{
public:
    explicit OwnDaemon(const TemporaryFolder& home) : mLog(home.path("daemon.log"))
    {
        // Where one user stands for all, the daemon's own user has to be that one.
        mScript = "mount -t tmpfs none /run && mkdir /run/avahi-daemon && "
                  "sed 's/^avahi:.*/avahi:x:0:0::\\/:\\/bin\\/false/' /etc/passwd > /run/passwd && "
                  "sed 's/^avahi:.*/avahi:x:0:/' /etc/group > /run/group && "
                  "mount --bind /run/passwd /etc/passwd && mount --bind /run/group /etc/group && "
                  "exec avahi-daemon -f " +
                  mFolder.write("avahi.conf",
                                "[server]\nhost-name=here\nallow-interfaces=fv0\nuse-ipv6=no\n"
                                "ratelimit-burst=10000\n[wide-area]\nenable-wide-area=no\n"
                                "[publish]\npublish-workstation=no\npublish-hinfo=no\n") +
                  " --no-chroot --no-rlimits --no-drop-root 2>>" + mLog;
    }

    const std::string& busAddress() const { return mBus.address(); }
    void start()
    {
        mProcess = std::make_unique<ChildProcess>(
            std::vector<std::string>{"unshare", "-m", "sh", "-c", mScript},
            ChildProcess::Environment{{"DBUS_SYSTEM_BUS_ADDRESS", mBus.address()}});
    }
    void send(int signal) { mProcess->sendSignal(signal); }
    void end(int signal)
    {
        send(signal);
        mProcess->waitForEnd();
    }

private:
    TemporaryFolder mFolder;
    PrivateBus mBus;
    std::string mLog;
    std::string mScript;
    std::unique_ptr<ChildProcess> mProcess;
};

class PaneDiscoveryFaults : public PaneSystem
{
protected:
    void SetUp() override
    {
        PaneSystem::SetUp();
        if (IsSkipped())
            return;
        daemon.emplace(home);
        environment.push_back(std::make_unique<ScopedEnvironment>("DBUS_SYSTEM_BUS_ADDRESS",
                                                                  daemon->busAddress().c_str()));
        startDaemon();
    }
    void startDaemon()
    {
        const auto starts = [this] {
            const std::string all = text("daemon.log");
            std::size_t count = 0;
            for (std::size_t at = 0; (at = all.find("Server startup complete", at)) != all.npos;
                 ++at)
                ++count;
            return count;
        };
        const auto before = starts();
        daemon->start();
        ASSERT_TRUE(waitUntil([&] { return starts() > before; })) << text("daemon.log");
    }

    std::optional<OwnDaemon> daemon;
};

TEST_F(PaneDiscoveryFaults, ItsDevicesLeaveWithTheDaemonAndReturnWithItAndTheConnectionStays)
{
    showConnectedToDesk();
    EXPECT_EQ(platform().discovery->condition(), DiscoveryCondition::working);
    daemon->end(SIGTERM);
    EXPECT_TRUE(unlists("Desk"));
    EXPECT_TRUE(lists("Desk (in background)")) << "the connection needs no discovery";
    startDaemon();
    ASSERT_TRUE(unlists("Desk (in background)"));
    EXPECT_TRUE(selects("Desk"));
    EXPECT_EQ(text("device.log").find("The host is gone"), std::string::npos);
}

TEST_F(PaneDiscoveryFaults, ADaemonThatCrashesIsFoundAgainToo)
{
    showWithDesk();
    daemon->end(SIGKILL);
    EXPECT_TRUE(unlists("Desk"));
    startDaemon();
    ASSERT_TRUE(lists("Desk")) << text("device.log");
    ASSERT_TRUE(choose("Desk"));
    EXPECT_TRUE(selects("Desk"));
}

TEST_F(PaneDiscoveryFaults, ADaemonThatStandsStillDoesNotHoldUpThePanel)
{
    showConnectedToDesk();
    hide();
    daemon->send(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    show();
    hide();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(10))
        << "a library's call waits 25 s";
    daemon->send(SIGCONT);
    show();
    EXPECT_TRUE(unlists("Desk (in background)"));
    EXPECT_TRUE(selects("Desk"));
}

} // namespace
} // namespace farview
