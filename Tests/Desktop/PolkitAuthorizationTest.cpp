#include "Platform/Desktop/Rights/PolkitAuthorization.h"

#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/ScriptedPolkit.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <unistd.h>

namespace farview
{
namespace
{

using Obstacle = Authorization::Obstacle;
using Status = Authorization::Status;

class PolkitAuthorizationTest : public testing::Test
{
protected:
    /// What pkexec is here: a script with these lines.
    void pkexecDoes(const std::string& lines)
    {
        folder.write("pkexec", "#!/bin/sh\n" + lines + "\n", true);
    }
    Authorization::Answer noting()
    {
        return [this](Status status) { answer = status; };
    }
    std::optional<Status> answered()
    {
        waitUntil([this] { return answer.has_value(); });
        return std::exchange(answer, std::nullopt);
    }
    std::optional<Status> create()
    {
        authorization->create("right", tool, target, noting());
        return answered();
    }
    std::optional<Status> foresee()
    {
        authorization->foresee(tool, target, noting());
        return answered();
    }
    std::optional<Status> execute()
    {
        authorization->executeWithPrivileges(tool, target, noting());
        return answered();
    }
    std::string written(const std::string& name) const
    {
        std::ifstream file(folder.path(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder folder;
    PrivateBus bus;
    ScriptedPolkit polkit{bus.address()};
    PolkitPlaces places{QString::fromStdString(bus.address()),
                        QString::fromStdString(folder.path("pkexec"))};
    std::unique_ptr<PolkitAuthorization> authorization =
        std::make_unique<PolkitAuthorization>(places);
    URL tool = URL::fileURLWithPath("/bin/true");
    std::shared_ptr<int> target = std::make_shared<int>();
    std::optional<Status> answer;
};

TEST(PolkitPlaces, AreWhereTheSystemHasThemWhateverTheEnvironmentSays)
{
    const ScopedEnvironment misleading("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/tmp/elsewhere");
    EXPECT_EQ(PolkitPlaces{}.busAddress, u"unix:path=/run/dbus/system_bus_socket"_qs);
    EXPECT_EQ(PolkitPlaces{}.pkexec, u"/usr/bin/pkexec"_qs);
}

TEST_F(PolkitAuthorizationTest, ABusThatStandsStillIsGivenUpWithoutWaitingForIt)
{
    bus.process().sendSignal(SIGSTOP);
    const auto begun = std::chrono::steady_clock::now();
    authorization->create("right", tool, target, noting());
    authorization->foresee(tool, target, noting());
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(10))
        << "a library's call waits 25 s";
    EXPECT_EQ(answered(), Status::internal);
    bus.process().sendSignal(SIGCONT);
}

TEST_F(PolkitAuthorizationTest, AsksForThisProcessAndForTheActionOfTheToolsName)
{
    polkit.setResult(true, false);
    EXPECT_EQ(create(), Status::success);
    ASSERT_EQ(polkit.questions().size(), 1u);
    const auto& question = polkit.questions().front();
    EXPECT_EQ(question.action, u"true"_qs);
    EXPECT_EQ(question.flags, 1u) << "the user may be asked";
    EXPECT_EQ(question.subjectKind, u"unix-process"_qs);
    EXPECT_EQ(question.subject.value(u"pid"_qs).toUInt(), static_cast<unsigned>(::getpid()));
    EXPECT_GT(question.subject.value(u"start-time"_qs).toULongLong(), 0u);
    EXPECT_EQ(question.subject.value(u"uid"_qs).toInt(), static_cast<int>(::getuid()));
}

TEST_F(PolkitAuthorizationTest, ForeseesWithoutAskingTheUser)
{
    polkit.setResult(true, false);
    EXPECT_EQ(foresee(), Status::success);
    ASSERT_EQ(polkit.questions().size(), 1u);
    EXPECT_EQ(polkit.questions().front().flags, 0u);
}

TEST_F(PolkitAuthorizationTest, LooksForAnAgentOfTheProcessThenOfItsSession)
{
    const ScopedEnvironment session("XDG_SESSION_ID", "c7");
    polkit.setResult(false, true);
    EXPECT_EQ(foresee(), Status::interactionNotAllowed);
    ASSERT_EQ(polkit.questions().size(), 3u);
    EXPECT_EQ(polkit.questions()[1].member, u"UnregisterAuthenticationAgent"_qs);
    EXPECT_EQ(polkit.questions()[1].subjectKind, u"unix-process"_qs);
    EXPECT_EQ(polkit.questions()[2].subjectKind, u"unix-session"_qs);
    EXPECT_EQ(polkit.questions()[2].subject.value(u"session-id"_qs).toString(), u"c7"_qs);
}

TEST_F(PolkitAuthorizationTest, OutsideASessionLooksForAnAgentOfTheUsersDisplay)
{
    const ScopedEnvironment session("XDG_SESSION_ID", nullptr);
    polkit.setResult(false, true);
    EXPECT_EQ(foresee(), Status::interactionNotAllowed);
    EXPECT_EQ(polkit.questions().size(), 2u) << "nobody knows of a session";
    polkit.setSessionOfDisplay(QStringLiteral("c8"));
    EXPECT_EQ(foresee(), Status::interactionNotAllowed);
    ASSERT_EQ(polkit.questions().size(), 5u);
    EXPECT_EQ(polkit.questions()[4].subject.value(u"session-id"_qs).toString(), u"c8"_qs);
    polkit.setSessionOfDisplay(QString());
    EXPECT_EQ(foresee(), Status::interactionNotAllowed);
    EXPECT_EQ(polkit.questions().size(), 7u) << "a user without a display";
}

TEST_F(PolkitAuthorizationTest, AnAgentThatIsNotOursIsAnAgent)
{
    polkit.setResult(false, true);
    polkit.setAgentError(QStringLiteral("System bus names do not match"));
    EXPECT_EQ(foresee(), Status::success);
    polkit.setAgentError(QStringLiteral("something new"));
    EXPECT_EQ(foresee(), Status::success) << "no false alarm";
}

TEST_F(PolkitAuthorizationTest, AnswersThatAreNoneAreNoPolkit)
{
    polkit.setNonsense();
    EXPECT_EQ(create(), Status::internal);
    EXPECT_EQ(foresee(), Status::internal);
    polkit.setError(QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
    EXPECT_EQ(create(), Status::internal);
    polkit.setError(QStringLiteral("org.freedesktop.PolicyKit1.Error.NotAuthorized"));
    EXPECT_EQ(create(), Status::denied);
}

TEST_F(PolkitAuthorizationTest, WithoutABusThereIsNoPolkit)
{
    places.busAddress = QStringLiteral("unix:path=/nonexistent/farview-bus");
    authorization = std::make_unique<PolkitAuthorization>(places);
    EXPECT_EQ(create(), Status::internal);
    EXPECT_EQ(foresee(), Status::internal);
}

TEST_F(PolkitAuthorizationTest, ABusThatEndsDuringTheQuestionIsNoPolkit)
{
    polkit.hold();
    authorization->create("right", tool, target, noting());
    ASSERT_TRUE(waitUntil([this] { return !polkit.questions().empty(); }));
    bus.stop();
    EXPECT_EQ(answered(), Status::internal);
}

TEST_F(PolkitAuthorizationTest, ManyQuestionsAtOnceAreAnsweredEach)
{
    polkit.setResult(true, false);
    int answers = 0;
    for (int count = 0; count < 20; ++count)
        authorization->create("right", tool, target, [&](Status) { ++answers; });
    EXPECT_TRUE(waitUntil([&] { return answers == 20; }));
}

TEST_F(PolkitAuthorizationTest, RunsTheToolByItsCanonicalPathInABareEnvironment)
{
    const ScopedEnvironment secret("FARVIEW_SECRET", "1");
    std::filesystem::create_symlink("/usr/bin/true", folder.path("link"));
    pkexecDoes("echo \"$@\" >'" + folder.path("arguments") + "'; env >'" +
               folder.path("environment") + "'; pwd >'" + folder.path("folder") + "'");
    tool = URL::fileURLWithPath(folder.path("link"));
    EXPECT_EQ(execute(), Status::success);
    EXPECT_EQ(written("arguments"), "--disable-internal-agent " +
                                        std::filesystem::canonical("/usr/bin/true").string() +
                                        "\n");
    EXPECT_EQ(written("environment").find("SECRET"), std::string::npos);
    EXPECT_EQ(written("folder"), "/\n");
}

TEST_F(PolkitAuthorizationTest, TellsHowTheToolEnded)
{
    const std::pair<const char*, Status> rows[] = {{"exit 0", Status::success},
                                                   {"exit 126", Status::canceled},
                                                   {"exit 127", Status::toolExecuteFailure},
                                                   {"exit 1", Status::toolExecuteFailure},
                                                   {"kill -KILL $$", Status::toolExecuteFailure}};
    for (const auto& [lines, status] : rows) {
        pkexecDoes(lines);
        EXPECT_EQ(execute(), status) << lines;
    }
}

TEST_F(PolkitAuthorizationTest, WithoutPkexecNothingCanBeRun)
{
    EXPECT_EQ(execute(), Status::toolExecuteFailure);
}

TEST_F(PolkitAuthorizationTest, AToolThatOthersCanChangeIsNamedAndNotRun)
{
    pkexecDoes("touch '" + folder.path("was-run") + "'");
    tool = URL::fileURLWithPath(folder.write("tool", "#!/bin/sh\n", true));
    const auto obstacle = authorization->obstacleOf(tool);
    EXPECT_EQ(obstacle.kind, Obstacle::Kind::changeableByOthers);
    EXPECT_TRUE(tool.path().starts_with(obstacle.path)) << obstacle.path;
    EXPECT_EQ(execute(), Status::toolExecuteFailure);
    EXPECT_FALSE(std::filesystem::exists(folder.path("was-run")));
}

TEST_F(PolkitAuthorizationTest, EndsAtOnceWhileAToolRunsWhichGoesOn)
{
    pkexecDoes("until [ -e '" + folder.path("go") + "' ]; do sleep 0.02; done; touch '" +
               folder.path("has-run") + "'");
    authorization->executeWithPrivileges(tool, target, noting());
    runLoopFor(std::chrono::milliseconds(50));
    authorization.reset();
    folder.write("go", "");
    EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(folder.path("has-run")); }));
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(answer, std::nullopt);
}

TEST_F(PolkitAuthorizationTest, EndsAtOnceWhileAQuestionIsOpen)
{
    polkit.hold();
    authorization->create("right", tool, target, noting());
    ASSERT_TRUE(waitUntil([this] { return !polkit.questions().empty(); }));
    authorization.reset();
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(answer, std::nullopt);
}

} // namespace
} // namespace farview
