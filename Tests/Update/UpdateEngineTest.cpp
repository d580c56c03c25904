// What the engine says and does when all are honest.

#include "Tests/Support/WaitUntil.h"
#include "Tests/Update/UpdateFixture.h"

#include <QJsonDocument>
#include <QProcess>

#include <filesystem>
#include <fstream>

namespace farview
{
namespace
{

using UpdateEngine = UpdateFixture;

std::vector<std::string> eventsOf(const EngineRun& run)
{
    std::vector<std::string> names;
    for (const auto& each : run.events()) {
        const auto name = each["event"].toString().toStdString();
        if (names.empty() || names.back() != name)
            names.push_back(name);
    }
    return names;
}

TEST_F(UpdateEngine, BringsTheNewVersionStepByStep)
{
    publish(packed(release("1.1")));
    const auto run = start();
    ASSERT_TRUE(run->says("found")) << run->printed();
    EXPECT_EQ(run->last()["version"], "1.1");
    EXPECT_EQ(run->last()["notes"], "What is new");
    EXPECT_GT(run->last()["length"].toInt(), 100);
    EXPECT_FALSE(server.wasAskedFor("archive.tar.xz"));
    run->say("download");
    ASSERT_TRUE(run->says("ready")) << run->printed();
    EXPECT_EQ(version(), "1.0");
    run->say("install");
    EXPECT_EQ(run->status(), 0);
    EXPECT_EQ(eventsOf(*run),
              (std::vector<std::string>{"checking", "found", "downloading", "verifying", "ready",
                                        "installing", "installed"}));
    EXPECT_EQ(version(), "1.1");
    EXPECT_EQ(snapshot(bundle), snapshot(folder.path("release-1.1") + "/Example Pane.prefPane"));
    EXPECT_EQ(leftovers(), std::vector<std::string>());
}

TEST_F(UpdateEngine, SaysThatNothingIsNewer)
{
    for (const char* offered : {"1.0", "1.0.0", "0.9"}) {
        publish("no archive", offered);
        const auto run = start();
        EXPECT_EQ(run->outcome(), "current");
        EXPECT_EQ(run->status(), 0);
        EXPECT_EQ(run->last()["version"], "1.0");
        EXPECT_EQ(run->last()["offered"], offered);
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, ACheckEndsWithWhatItFoundAndReadsNoInput)
{
    publish(packed(release("1.1")));
    const auto run = start({"--check-only"});
    run->closeInput();
    EXPECT_EQ(run->outcome(), "found");
    EXPECT_EQ(run->status(), 0);
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, IsBrokenOffByAWordByTheEndOfItsInputAndBySignals)
{
    publish(packed(release("1.1")));
    const std::vector<std::function<void(EngineRun&)>> ways = {
        [](EngineRun& run) { run.say("cancel"); },
        [](EngineRun& run) { run.closeInput(); },
        [](EngineRun& run) { run.process().terminate(); },
    };
    for (const char* moment : {"found", "ready"}) {
        for (const auto& breakOff : ways) {
            const auto run = start();
            if (std::string(moment) == "ready")
                run->say("download");
            ASSERT_TRUE(run->says(moment)) << run->printed();
            breakOff(*run);
            EXPECT_EQ(run->outcome(), "cancelled");
            EXPECT_EQ(run->status(), 0);
            EXPECT_TRUE(isUntouched());
        }
    }
}

TEST_F(UpdateEngine, IsBrokenOffWhileItDownloads)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    server.serve("archive.tar.xz", UpdateServer::Answer{200, archive, {}, {}, archive.size() / 2});
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(waitUntil([&] { return server.wasAskedFor("archive.tar.xz"); }));
    EXPECT_FALSE(leftovers().empty());
    run->say("cancel");
    EXPECT_EQ(run->outcome(), "cancelled");
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, IsBrokenOffWhileTheNewBundleIsTried)
{
    publish(packed(release("1.1")));
    host = folder.write("slow host", "#!/bin/sh\n>'" + folder.path("tried") + "'\nexec sleep 60\n",
                        true);
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(folder.path("tried")); }));
    run->say("cancel");
    EXPECT_EQ(run->outcome(), "cancelled");
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, NothingBreaksItOffAfterInstall)
{
    publish(packed(release("1.1")));
    const std::string gate = folder.path("gate");
    host = folder.write("slow host",
                        "#!/bin/sh\nuntil [ -e '" + gate + "' ]; do sleep 0.02; done\n", true);
    const auto run = start();
    run->say("download");
    run->say("install");
    ASSERT_TRUE(run->says("verifying")) << run->printed();
    run->say("cancel");
    run->closeInput();
    run->process().terminate();
    folder.write("gate", "");
    EXPECT_EQ(run->outcome(), "installed") << run->printed();
    EXPECT_EQ(version(), "1.1");
}

TEST_F(UpdateEngine, GoesOnWhenNobodyListensAnyMore)
{
    publish(packed(release("1.1")));
    const auto run = start();
    run->process().closeReadChannel(QProcess::StandardOutput);
    run->say("download");
    run->say("install");
    EXPECT_EQ(run->status(), 0);
    EXPECT_EQ(version(), "1.1");
}

TEST_F(UpdateEngine, TakesTheNewestVersionThatSuitsTheSystem)
{
    const auto archive = packed(release("1.1"));
    auto older = offer(archive, "1.1");
    auto newer = offer(archive, "2.0");
    newer.minimumSystemVersion = "99.0";
    publish(archive);
    publishFeed(feedOf({newer, older}));
    EXPECT_EQ(update(), "installed") << printed;
    EXPECT_EQ(version(), "1.1");
}

TEST_F(UpdateEngine, SaysThatTheSystemIsTooOldForWhatIsNewer)
{
    auto newer = offer("archive", "2.0");
    newer.minimumSystemVersion = "99.0";
    publish("archive", newer);
    EXPECT_EQ(update(), "system-too-old");
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, ReadsFeedAndArchiveFromFiles)
{
    const auto archive = packed(release("1.1"));
    folder.write("releases/archive.tar.xz", archive);
    const auto feed = feedOf({offerOf(archive, "1.1", "archive.tar.xz", key)});
    folder.write("releases/updates.xml", key.signedFeed(feed));
    setInfo(bundle, {{"SUFeedURL", "file://" + folder.path("releases/updates.xml")}});
    EXPECT_EQ(update(), "installed") << printed;
    EXPECT_EQ(version(), "1.1");
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(UpdateEngine, AVersionInBetweenLeadsToAnotherKeyAndItsFeed)
{
    const auto newKey = SigningKey::generated().value();
    const auto between = bundleOf("1.1");
    setInfo(between, {{"SUFeedURL", server.address("new/updates.xml")},
                      {"SUPublicEDKey", newKey.publicKey()}});
    const auto next = bundleOf("1.2");
    setInfo(next, {{"SUFeedURL", server.address("new/updates.xml")},
                   {"SUPublicEDKey", newKey.publicKey()}});
    const auto archive = packed(entriesOf(next));
    server.serve("new/archive.tar.xz", archive);
    // It may be older than the old key's, which goes on being signed anew.
    server.serve("new/updates.xml", newKey.signedFeed(feedOf(
                                        {offerOf(archive, "1.2", "archive.tar.xz", newKey)}, -60)));
    publish(packed(entriesOf(between)));
    EXPECT_EQ(update(), "installed") << printed;
    EXPECT_EQ(version(), "1.1");
    EXPECT_EQ(update(), "installed") << printed;
    EXPECT_EQ(version(), "1.2");
}

TEST_F(UpdateEngine, GoesOnWhereItCannotNoteTheNewestFeed)
{
    folder.write("settings", "no folder");
    publish(packed(release("1.1")));
    EXPECT_EQ(update(), "installed") << printed;
}

TEST_F(UpdateEngine, FollowsRedirectionsWithinHTTPS)
{
    const auto archive = packed(release("1.1"));
    publish(archive);
    server.redirect("archive.tar.xz", server.address("elsewhere"));
    server.serve("elsewhere", archive);
    EXPECT_EQ(update(), "installed") << printed;
}

TEST_F(UpdateEngine, ABundleThatSaysNothingOfUpdatesIsNotConfigured)
{
    for (const char* key : {"SUFeedURL", "SUPublicEDKey", "CFBundleVersion"}) {
        const auto value = infoText(bundle, key);
        setInfo(bundle, {{key, ""}});
        EXPECT_EQ(update(), "not-configured") << key;
        setInfo(bundle, {{key, value}});
    }
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, OneRunAtATime)
{
    publish(packed(release("1.1")));
    const auto first = start();
    first->say("download");
    ASSERT_TRUE(first->says("ready")) << first->printed();
    EXPECT_EQ(update(), "busy");
    first->say("install");
    EXPECT_EQ(first->outcome(), "installed");
}

TEST_F(UpdateEngine, ABundleThatAnotherReplacedMeanwhileStays)
{
    publish(packed(release("1.1")));
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(run->says("ready"));
    setInfo(bundle, {{"CFBundleVersion", "1.2"}});
    run->say("install");
    EXPECT_EQ(run->outcome(), "downgrade");
    EXPECT_EQ(version(), "1.2");
    EXPECT_EQ(leftovers(), std::vector<std::string>());
}

TEST_F(UpdateEngine, ABundleThatTheUserMayNotWriteIsManagedByOthers)
{
    publish(packed(release("1.1")));
    std::filesystem::permissions(folder.path("installed"), std::filesystem::perms(0755));
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    // Read-only for everybody, root included.
    const std::vector<std::string> readOnly{
        "unshare",
        "--mount",
        "sh",
        "-c",
        "mount --bind \"$0\" \"$0\" && mount -o remount,bind,ro \"$0\" && exec \"$@\"",
        folder.path("installed")};
    EXPECT_EQ(update({}, readOnly), "managed") << printed;
    EXPECT_TRUE(server.requests().empty());
    EXPECT_TRUE(isUntouched());
}

TEST_F(UpdateEngine, WrongUseIsSaidSo)
{
    EngineRun run({"--bundle", bundle}, {});
    EXPECT_EQ(run.status(), 2);
    EXPECT_TRUE(run.events().empty());
}

/// A server of the bundle that runs, another version of it in the next bundle, and a status item
/// that does not run.
class UpdateOfARunningServer : public UpdateEngine
{
protected:
    void SetUp() override
    {
        UpdateEngine::SetUp();
        if (IsSkipped())
            return;
        const auto path = pathOf(bundle, "ScreenCapture");
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::filesystem::copy_file("/bin/sleep", path);
        program.start(QString::fromStdString(path), {"60"});
        ASSERT_TRUE(program.waitForStarted());
        const auto next = bundleOf("1.1");
        // It tells whether the old one had ended when it was started.
        writeProgram(next, "ScreenCapture",
                     "readlink /proc/" + std::to_string(program.processId()) +
                         "/exe && early=early\n");
        writeProgram(next, "FarviewStatusItem", "");
        publish(packed(entriesOf(next)));
    }

    static std::string pathOf(const std::string& bundle, const std::string& name)
    {
        return bundle + "/Contents/Resources/" + name + ".app/Contents/Linux/" + name;
    }
    void writeProgram(const std::string& inBundle, const std::string& name,
                      const std::string& commands)
    {
        const auto path = std::filesystem::relative(pathOf(inBundle, name), folder.path());
        folder.write(path,
                     "#!/bin/sh\n" + commands + "echo started $early >'" + started(name) +
                         ".new'\nmv '" + started(name) + ".new' '" + started(name) + "'\n",
                     true);
    }
    std::string started(const std::string& name) const { return folder.path(name + ".started"); }
    void endServer()
    {
        program.terminate();
        EXPECT_TRUE(program.waitForFinished());
    }
    std::string startOf(const std::string& name) const
    {
        std::string line;
        std::ifstream file(started(name));
        std::getline(file, line);
        return line;
    }

    QProcess program;
};

TEST_F(UpdateOfARunningServer, StartsTheNewOneWhenTheOldOneHasEnded)
{
    const auto run = start();
    run->say("download");
    run->say("install");
    ASSERT_TRUE(run->says("installed")) << run->printed();
    endServer();
    EXPECT_EQ(run->status(), 0);
    EXPECT_TRUE(waitUntil([&] { return startOf("ScreenCapture") == "started"; }))
        << startOf("ScreenCapture");
    EXPECT_EQ(startOf("FarviewStatusItem"), "") << "it did not run before";
}

TEST_F(UpdateOfARunningServer, StartsTheOldOneAgainWhenNothingWasInstalled)
{
    const auto run = start();
    run->say("download");
    ASSERT_TRUE(run->says("ready")) << run->printed();
    endServer();
    std::filesystem::remove(pathOf(bundle, "ScreenCapture"));
    writeProgram(bundle, "ScreenCapture", "");
    setInfo(bundle, {{"CFBundleVersion", "0.9"}});
    run->say("install");
    EXPECT_EQ(run->outcome(), "downgrade") << run->printed();
    EXPECT_TRUE(waitUntil([&] { return startOf("ScreenCapture") == "started"; }));
}

} // namespace
} // namespace farview
