#include "Platform/Desktop/Programs/DesktopWorkspace.h"
#include "Platform/Desktop/Notifications/DBusNotificationCenter.h"
#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Fake/FakeBundle.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace farview
{
namespace
{

using Notes = std::vector<std::string>;
using namespace std::chrono_literals;
constexpr const char* applicationName = "fvtest-app";
constexpr unsigned options = 0x10300;

Notes linesOf(const std::string& file)
{
    Notes lines;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class LaunchTest : public testing::Test
{
protected:
    LaunchTest()
    {
        const auto folder = mFolder.path("Test.app/Contents/Linux");
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink(FARVIEW_TEST_PEER, folder + "/" + applicationName);
        const auto bundle = mBundles.add(mFolder.path("Test.app"));
        bundle->setInfo("CFBundleExecutable", applicationName);
        bundle->setInfo("CFBundleIdentifier", "com.quillon.TestApplication");
    }

    bool launch(Workspace& workspace)
    {
        return workspace.launchApplicationAtURL(URL::fileURLWithPath(mFolder.path("Test.app")),
                                                options);
    }
    Notes notes() const { return linesOf(mFolder.path("notes")); }
    bool waitForNotes(std::size_t count)
    {
        return waitUntil([&] { return notes().size() >= count; });
    }
    std::ptrdiff_t countOf(const std::string& note) const
    {
        const auto all = notes();
        return std::count(all.begin(), all.end(), note);
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mNotes{"FARVIEW_TEST_NOTES", mFolder.path("notes").c_str()};
    OrphanCollector mApplications{applicationName};
    FakeBundles mBundles;
    FakeLog mLog;
    QtRunLoop mLoop;
};

class LaunchOnABusTest : public LaunchTest
{
protected:
    /// Starts the application and waits until it owns its name and can be asked to quit.
    void launchAndWait()
    {
        bool ready = false;
        const auto observer = std::make_shared<int>(0);
        mCenter.addObserver(
            observer, [&](const Notification&) { ready = true; }, "Ready", "");
        ASSERT_TRUE(launch(mWorkspace));
        ASSERT_TRUE(waitUntil([&] { return ready; }));
    }
    static bool waitWithoutLoop(const std::function<bool()>& condition)
    {
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (!condition() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(1ms);
        return condition();
    }
    void askToQuit() { mCenter.postNotificationName("Quit", "", {}, 3); }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
    TestBus mBus{mLog};
    DBusNotificationCenter mCenter{mBus, mLoop, mLog};
    DesktopWorkspace mWorkspace{mBus, mBundles, mLoop, mLog};
};

TEST_F(LaunchOnABusTest, StartsTheExecutableOnItsOwn)
{
    launchAndWait();
    const auto running = mApplications.running();
    ASSERT_EQ(running.size(), 1u);
    const auto process = "/proc/" + std::to_string(running[0]);
    EXPECT_EQ(std::filesystem::read_symlink(process + "/cwd"), "/");
    EXPECT_EQ(std::filesystem::read_symlink(process + "/fd/0"), "/dev/null");
    EXPECT_EQ(std::filesystem::read_symlink(process + "/fd/1"), "/dev/null");
    EXPECT_NE(::getsid(running[0]), ::getsid(0));
}

TEST_F(LaunchOnABusTest, TwoLaunchesInQuickSuccessionStartOne)
{
    EXPECT_TRUE(launch(mWorkspace));
    EXPECT_TRUE(launch(mWorkspace));
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_TRUE(launch(mWorkspace));
    runLoopFor(300ms);
    EXPECT_EQ(notes(), (Notes{"started", "turn"}));
}

TEST_F(LaunchOnABusTest, TwoProgramsThatLaunchAtOnceEndUpWithOne)
{
    TestBus otherBus(mLog);
    DesktopWorkspace other(otherBus, mBundles, mLoop, mLog);
    EXPECT_TRUE(launch(mWorkspace));
    EXPECT_TRUE(launch(other));
    ASSERT_TRUE(waitForNotes(3));
    runLoopFor(100ms);
    EXPECT_EQ(countOf("started"), 1);
    EXPECT_EQ(countOf("second"), 1);
    EXPECT_TRUE(waitUntil([&] { return mApplications.running().size() == 1; }));
}

TEST_F(LaunchOnABusTest, AnApplicationThatRunsIsNotStartedAgain)
{
    launchAndWait();
    EXPECT_TRUE(launch(mWorkspace));
    runLoopFor(300ms);
    EXPECT_EQ(countOf("started"), 1);
    EXPECT_EQ(countOf("second"), 0);
}

TEST_F(LaunchOnABusTest, AnApplicationThatHangsIsNotStartedAgain)
{
    launchAndWait();
    ASSERT_EQ(mApplications.running().size(), 1u);
    ::kill(mApplications.running()[0], SIGSTOP);
    EXPECT_TRUE(launch(mWorkspace));
    runLoopFor(2500ms);
    EXPECT_EQ(mApplications.running().size(), 1u);
    EXPECT_EQ(countOf("second"), 0);
}

TEST_F(LaunchOnABusTest, OffAndOnInQuickSuccessionStartsANewOneThatWaitsItsTurn)
{
    launchAndWait();
    ASSERT_TRUE(waitForNotes(2));
    askToQuit();
    EXPECT_TRUE(launch(mWorkspace));
    ASSERT_TRUE(waitForNotes(5));
    // Which of the two is quicker is nobody's affair.
    EXPECT_THAT(notes(), testing::AnyOf(Notes{"started", "turn", "started", "ended", "turn"},
                                        Notes{"started", "turn", "ended", "started", "turn"}));
}

TEST_F(LaunchOnABusTest, OffAndOnRightAfterAnotherLaunchStartsANewOneToo)
{
    launchAndWait();
    EXPECT_TRUE(launch(mWorkspace));
    askToQuit();
    EXPECT_TRUE(launch(mWorkspace));
    EXPECT_TRUE(waitUntil([&] { return countOf("started") == 2; }));
}

TEST_F(LaunchOnABusTest, OffAndOnWhileItIsStillComingUpStartsANewOneToo)
{
    EXPECT_TRUE(launch(mWorkspace));
    ASSERT_TRUE(waitUntil([&] { return !mApplications.running().empty(); }));
    // Without the loop: who launches has not heard yet that it is up.
    ASSERT_TRUE(waitWithoutLoop([&] { return countOf("turn") == 1; }));
    askToQuit();
    EXPECT_TRUE(launch(mWorkspace));
    EXPECT_TRUE(waitUntil([&] { return countOf("started") == 2; }));
    EXPECT_TRUE(waitUntil([&] { return mApplications.running().size() == 1; }));
}

TEST_F(LaunchOnABusTest, AnApplicationThatCrashedIsStartedAgain)
{
    launchAndWait();
    ::kill(mApplications.running().at(0), SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return mApplications.running().empty(); }));
    EXPECT_TRUE(launch(mWorkspace));
    EXPECT_TRUE(waitUntil([&] { return countOf("started") == 2; }));
}

TEST_F(LaunchOnABusTest, ABundleThatCannotBeStartedSaysSo)
{
    const auto fails = [this](const std::string& executable) {
        const auto bundle = mBundles.add(mFolder.path("Broken.app"));
        bundle->setInfo("CFBundleExecutable", PropertyList(executable));
        return !mWorkspace.launchApplicationAtURL(URL::fileURLWithPath(mFolder.path("Broken.app")),
                                                  options);
    };
    mFolder.write("Broken.app/Contents/Linux/text", "no program");
    std::filesystem::create_directories(mFolder.path("Broken.app/Contents/Linux/folder"));
    EXPECT_TRUE(fails(""));
    EXPECT_TRUE(fails("missing"));
    EXPECT_TRUE(fails("text"));
    EXPECT_TRUE(fails("folder"));
    EXPECT_TRUE(fails("../../../Test.app/Contents/Linux/fvtest-app"));
    EXPECT_FALSE(mWorkspace.launchApplicationAtURL(URL::fileURLWithPath("/nowhere"), options));
    EXPECT_FALSE(mWorkspace.launchApplicationAtURL(URL::fileURLWithPath(""), options));
    EXPECT_FALSE(mWorkspace.launchApplicationAtURL(URL(), options));
    EXPECT_EQ(notes(), Notes{});
}

TEST_F(LaunchTest, WithoutABusItIsStillStartedOnce)
{
    TestBus noBus(mLog);
    DesktopWorkspace workspace(noBus, mBundles, mLoop, mLog);
    EXPECT_TRUE(launch(workspace));
    EXPECT_TRUE(launch(workspace));
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_TRUE(launch(workspace));
    runLoopFor(200ms);
    EXPECT_EQ(notes(), (Notes{"started", "turn"}));
}

TEST_F(LaunchTest, WithoutABusOneThatAnotherProgramStartedIsNotStartedAgain)
{
    TestBus noBus(mLog);
    DesktopWorkspace first(noBus, mBundles, mLoop, mLog);
    EXPECT_TRUE(launch(first));
    ASSERT_TRUE(waitForNotes(2));
    DesktopWorkspace another(noBus, mBundles, mLoop, mLog);
    EXPECT_TRUE(launch(another));
    runLoopFor(200ms);
    EXPECT_EQ(notes(), (Notes{"started", "turn"}));

    ::kill(mApplications.running().at(0), SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return mApplications.running().empty(); }));
    EXPECT_TRUE(launch(another));
    EXPECT_TRUE(waitForNotes(4)) << "one that has died is";
}

/// Stands in for the desktop's portal.
class ScriptedPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")

public:
    ScriptedPortal(TestBus& bus, bool refuses) : mBus(bus), mRefuses(refuses)
    {
        bus.connection().registerObject("/org/freedesktop/portal/desktop", this,
                                        QDBusConnection::ExportScriptableSlots);
        EXPECT_TRUE(bus.takeName("org.freedesktop.portal.Desktop"));
    }

    QStringList opened;

public Q_SLOTS:
    Q_SCRIPTABLE void OpenURI(const QString&, const QString& uri, const QVariantMap&,
                              const QDBusMessage& call)
    {
        opened << uri;
        call.setDelayedReply(true);
        mBus.connection().send(mRefuses ? call.createErrorReply("test.Refused", "no")
                                        : call.createReply());
    }

private:
    SessionBus& mBus;
    bool mRefuses;
};

class OpenTest : public testing::Test
{
protected:
    /// A program in PATH that writes down its arguments.
    void addProgram(const std::string& name)
    {
        mFolder.write(
            "bin/" + name,
            "#!/bin/sh\nprintf '%s\\n' \"$@\" >> '" + mFolder.path(name + ".notes") + "'\n", true);
    }
    Notes notesOf(const std::string& program)
    {
        waitUntil([&] { return !linesOf(mFolder.path(program + ".notes")).empty(); });
        return linesOf(mFolder.path(program + ".notes"));
    }

    TemporaryFolder mFolder;
    ScopedEnvironment mPath{"PATH", (mFolder.path("bin") + ":/usr/bin:/bin").c_str()};
    FakeBundles mBundles;
    FakeLog mLog;
    QtRunLoop mLoop;
    TestBus mBus{mLog};
    DesktopWorkspace mWorkspace{mBus, mBundles, mLoop, mLog};
    URL mPage = *URL::URLWithString("https://example.org/?a=b&c");
};

TEST_F(OpenTest, AnAddressGoesToTheDesktopsOpener)
{
    addProgram("xdg-open");
    EXPECT_TRUE(mWorkspace.openURL(mPage));
    EXPECT_EQ(notesOf("xdg-open"), Notes{"https://example.org/?a=b&c"});
}

TEST_F(OpenTest, ADocumentGoesToTheDesktopsOpener)
{
    addProgram("xdg-open");
    const auto file = mFolder.write("The Manual.pdf", "text");
    EXPECT_TRUE(mWorkspace.openURL(URL::fileURLWithPath(file)));
    EXPECT_EQ(notesOf("xdg-open"), Notes{"file://" + mFolder.path("The%20Manual.pdf")});
}

TEST_F(OpenTest, APaneGoesToThePreferences)
{
    addProgram("farview-preferences");
    const auto pane = mFolder.path("My Pane.prefPane");
    std::filesystem::create_directories(pane);
    EXPECT_TRUE(mWorkspace.openURL(URL::fileURLWithPath(pane)));
    EXPECT_EQ(notesOf("farview-preferences"), (Notes{"--pane", pane}));
}

TEST_F(OpenTest, WithoutAnOpenerNothingHappens)
{
    const ScopedEnvironment path("PATH", mFolder.path("bin").c_str());
    const auto pane = mFolder.path("Pane.prefPane");
    std::filesystem::create_directories(pane);
    EXPECT_FALSE(mWorkspace.openURL(mPage));
    EXPECT_FALSE(mWorkspace.openURL(URL::fileURLWithPath(pane)));
}

TEST_F(OpenTest, WhatLeadsNowhereIsNotOpened)
{
    addProgram("xdg-open");
    EXPECT_FALSE(mWorkspace.openURL(URL::fileURLWithPath(mFolder.path("missing.pdf"))));
    EXPECT_FALSE(mWorkspace.openURL(URL::fileURLWithPath("")));
    EXPECT_FALSE(mWorkspace.openURL(URL()));
    EXPECT_FALSE(mWorkspace.openURL(*URL::URLWithString("--option:x")));
}

TEST_F(OpenTest, APortalComesFirst)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    TestBus bus(mLog);
    TestBus portalBus(mLog);
    ScriptedPortal portal(portalBus, false);
    DesktopWorkspace workspace(bus, mBundles, mLoop, mLog);
    addProgram("xdg-open");
    EXPECT_TRUE(workspace.openURL(mPage));
    ASSERT_TRUE(waitUntil([&] { return portal.opened.size() == 1; }));
    EXPECT_EQ(portal.opened.at(0), "https://example.org/?a=b&c");
    runLoopFor(100ms);
    EXPECT_EQ(linesOf(mFolder.path("xdg-open.notes")), Notes{});
}

TEST_F(OpenTest, APortalThatRefusesIsFollowedByTheOpener)
{
    PrivateBus privateBus;
    const SessionBusScope scope(privateBus.address());
    TestBus bus(mLog);
    TestBus portalBus(mLog);
    ScriptedPortal portal(portalBus, true);
    DesktopWorkspace workspace(bus, mBundles, mLoop, mLog);
    addProgram("xdg-open");
    EXPECT_TRUE(workspace.openURL(mPage));
    EXPECT_EQ(notesOf("xdg-open"), Notes{"https://example.org/?a=b&c"});
    EXPECT_EQ(portal.opened.size(), 1);
}

} // namespace
} // namespace farview

#include "DesktopWorkspaceTest.moc"
