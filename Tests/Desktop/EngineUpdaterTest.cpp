// What the updater of programs makes of an engine that does not behave.

#include "Platform/Desktop/Updates/EngineUpdater.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/ScriptedUpdateEngine.h"
#include "Tests/Support/UpdateRecorder.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace
{

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using Engine = ScriptedUpdateEngine;
using Stage = UpdateStatus::Stage;

class EngineUpdaterTest : public testing::Test
{
protected:
    EngineUpdaterTest()
    {
        updater.emplace(UpdatePlaces{QStringLiteral("/a/My bundle"),
                                     QString::fromStdString(engine.path()),
                                     QStringLiteral("/a/host")},
                        log);
        updater->setDelegate(recorder);
    }
    bool reaches(Stage stage)
    {
        return waitUntil([&] { return updater->status().stage == stage; });
    }
    void check(const std::string& script)
    {
        engine.follow(script, "");
        updater->checkForUpdates();
    }
    void update(const std::string& script)
    {
        engine.follow(Engine::finds, script);
        updater->checkForUpdates();
        ASSERT_TRUE(reaches(Stage::found));
        updater->downloadUpdate();
    }
    /// By an engine that notes when it is asked to end.
    void downloadForEver()
    {
        ASSERT_NO_FATAL_FAILURE(
            update("trap 'printf ended >\"$here/end\"; exit 0' TERM\nprintf on >\"$here/on\"\n"
                   "while :; do sleep 0.05; done"));
        ASSERT_TRUE(isWritten("on"));
    }
    void expectInternalFailure()
    {
        EXPECT_TRUE(reaches(Stage::failed));
        EXPECT_EQ(updater->status().problem, UpdateProblem::internal);
    }
    std::string text(const std::string& file) const
    {
        std::ostringstream all;
        all << std::ifstream(engine.folder().path(file)).rdbuf();
        return all.str();
    }
    bool isWritten(const std::string& file) const
    {
        return waitUntil([&] { return !text(file).empty(); });
    }

    Engine engine;
    FakeLog log;
    std::shared_ptr<UpdateRecorder> recorder = std::make_shared<UpdateRecorder>();
    std::optional<EngineUpdater> updater;
};

TEST_F(EngineUpdaterTest, TellsTheEngineWhatToUpdateAndWhoTriesIt)
{
    check(Engine::findsNothing);
    ASSERT_TRUE(reaches(Stage::current));
    EXPECT_EQ(text("arguments"), "--bundle\n/a/My bundle\n--host\n/a/host\n--check-only\n");
    ASSERT_NO_FATAL_FAILURE(update(std::string(Engine::getsReady) + "hear"));
    ASSERT_TRUE(reaches(Stage::ready));
    EXPECT_EQ(text("arguments"), "--bundle\n/a/My bundle\n--host\n/a/host\n");
}

TEST_F(EngineUpdaterTest, AnEngineThatIsMissingIsAFailureThatTheLogExplains)
{
    std::filesystem::remove(engine.path());
    updater->checkForUpdates();
    expectInternalFailure();
    EXPECT_TRUE(log.contains("cannot be started"));
    updater->checkForUpdates();
    expectInternalFailure();
}

TEST_F(EngineUpdaterTest, AnEngineThatDiesInTheMiddleIsAFailure)
{
    check("say '\"checking\"'; kill -9 $$");
    expectInternalFailure();
    EXPECT_TRUE(log.contains("it crashed"));
    ASSERT_NO_FATAL_FAILURE(
        update(std::string(Engine::finds) + "; hear; say '\"verifying\"'; exit 3"));
    expectInternalFailure();
    EXPECT_TRUE(log.contains("it ended with status 3"));
    ASSERT_NO_FATAL_FAILURE(
        update(std::string(Engine::getsReady) + "hear; say '\"installing\"'; kill -9 $$"));
    ASSERT_TRUE(reaches(Stage::ready));
    updater->installUpdate();
    expectInternalFailure();
}

TEST_F(EngineUpdaterTest, AnEngineThatEndsWithoutAResultIsAFailure)
{
    check("say '\"checking\"'");
    expectInternalFailure();
}

TEST_F(EngineUpdaterTest, WhatItDoesNotKnowItLogsAndIgnores)
{
    check("echo nonsense; say '\"dancing\"'; echo; say '\"found\",\"version\":\"<b>\"'; " +
          std::string(Engine::finds));
    ASSERT_TRUE(reaches(Stage::found));
    EXPECT_TRUE(log.contains("something unknown"));
    EXPECT_THAT(recorder->stages, ElementsAre(Stage::checking, Stage::found));
}

TEST_F(EngineUpdaterTest, WhatDoesNotFitIsIgnored)
{
    check(R"(say '"installed","version":"1.1"'; say '"ready","version":"1.1"'; say '"verifying"'
say '"downloading","received":1,"length":2'; say '"cancelled"'; )" +
          std::string(Engine::findsNothing));
    ASSERT_TRUE(reaches(Stage::current));
    EXPECT_THAT(recorder->stages, ElementsAre(Stage::checking, Stage::current));
}

TEST_F(EngineUpdaterTest, ALineWithoutAnEndIsRefused)
{
    check("exec tr '\\0' x </dev/zero");
    expectInternalFailure();
}

TEST_F(EngineUpdaterTest, NothingIsInstalledThatWasNotAgreedTo)
{
    ASSERT_NO_FATAL_FAILURE(update(R"(say '"found","version":"1.1","notes":"","length":1000'
hear; say '"verifying"'; say '"ready","version":"6.6"'; hear; printf "$word" >"$here/word")"));
    ASSERT_TRUE(reaches(Stage::failed));
    EXPECT_EQ(updater->status().problem, UpdateProblem::wrongVersion);
    updater->installUpdate();
    EXPECT_THAT(recorder->installing, IsEmpty());
}

TEST_F(EngineUpdaterTest, NoDownloadIsOrderedOfAnotherVersion)
{
    ASSERT_NO_FATAL_FAILURE(update(R"(say '"found","version":"1.2","notes":"","length":1000'
hear; printf 'heard:%s' "$word" >"$here/word")"));
    waitUntil([this] { return updater->status().version == "1.2"; });
    EXPECT_EQ(updater->status().stage, Stage::found);
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(text("word").empty() || text("word") == "heard:") << text("word");
}

TEST_F(EngineUpdaterTest, CancelEndsTheEngine)
{
    downloadForEver();
    updater->cancel();
    EXPECT_TRUE(isWritten("end"));
    EXPECT_EQ(updater->status().stage, Stage::cancelled);
}

TEST_F(EngineUpdaterTest, AnUpdaterThatGoesEndsTheEngine)
{
    downloadForEver();
    updater.reset();
    EXPECT_TRUE(isWritten("end"));
}

TEST_F(EngineUpdaterTest, AnInstallationGoesOnWithoutTheUpdater)
{
    ASSERT_NO_FATAL_FAILURE(
        update(std::string(Engine::getsReady) +
               "hear\nsay '\"installing\"'\nprintf on >\"$here/on\"\n"
               "while [ ! -e \"$here/go\" ]; do sleep 0.05; done\nprintf ended >\"$here/end\""));
    ASSERT_TRUE(reaches(Stage::ready));
    updater->installUpdate();
    ASSERT_TRUE(isWritten("on"));
    updater.reset();
    std::ofstream(engine.folder().path("go")) << "go";
    EXPECT_TRUE(isWritten("end"));
}

TEST_F(EngineUpdaterTest, UpdatersThatGoLeaveIdleOnesBehind)
{
    auto updaters = std::make_unique<EngineUpdaters>(QStringLiteral("/a/host"), log);
    const auto kept = updaters->updaterForBundle("/nowhere/A.prefPane");
    kept->setDelegate(recorder);
    kept->checkForUpdates();
    recorder->stages.clear();
    updaters.reset();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_THAT(recorder->stages, IsEmpty());
}

} // namespace
