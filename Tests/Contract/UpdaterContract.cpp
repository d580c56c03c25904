#include "Platform/Desktop/Updates/EngineUpdater.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Fake/FakeUpdater.h"
#include "Tests/Support/ScriptedUpdateEngine.h"
#include "Tests/Support/UpdateRecorder.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using Engine = ScriptedUpdateEngine;
using Stage = UpdateStatus::Stage;

/// How a search goes, and how an update.
enum class Search { findsNothing, finds, fails, hangs };
enum class Update { installs, failsToDownload, failsToInstall, findsAnother, hangs };

class FakeBench
{
public:
    void follow(Search search, Update update)
    {
        mSearch = search;
        mUpdate = update;
    }
    Updater& updater() { return mUpdater; }
    /// Lets what was begun go on.
    void goOn()
    {
        if (mUpdater.status().stage == Stage::checking)
            search();
        else if (mUpdater.status().stage == Stage::downloading)
            download();
        else if (mUpdater.status().stage == Stage::installing)
            install();
    }

private:
    void search()
    {
        if (mSearch == Search::findsNothing)
            mUpdater.findNothing();
        else if (mSearch == Search::finds)
            mUpdater.find("1.1", "Faster.");
        else if (mSearch == Search::fails)
            mUpdater.fail(UpdateProblem::server);
    }
    void download()
    {
        if (mUpdate == Update::failsToDownload)
            return mUpdater.fail(UpdateProblem::stalled);
        if (mUpdate == Update::findsAnother)
            return mUpdater.find("1.2", "");
        if (mUpdate == Update::hangs)
            return;
        mUpdater.receive(1000, 1000);
        mUpdater.verify();
        mUpdater.getReady();
    }
    void install()
    {
        mUpdate == Update::installs ? mUpdater.finishInstallation()
                                    : mUpdater.fail(UpdateProblem::write);
    }

    FakeUpdater mUpdater;
    Search mSearch = Search::finds;
    Update mUpdate = Update::installs;
};

/// The updater of programs, with an engine that does as it is told.
class EngineBench
{
public:
    void follow(Search search, Update update) { mEngine.follow(script(search), script(update)); }
    Updater& updater() { return mUpdater; }
    void goOn() {}

private:
    static std::string script(Search search)
    {
        switch (search) {
        case Search::findsNothing:
            return Engine::findsNothing;
        case Search::finds:
            return Engine::finds;
        case Search::fails:
            return Engine::fails;
        case Search::hangs:
            break;
        }
        return "exec sleep 60";
    }
    static std::string script(Update update)
    {
        switch (update) {
        case Update::installs:
            return std::string(Engine::getsReady) + Engine::installs;
        case Update::failsToInstall:
            return std::string(Engine::getsReady) +
                   R"(hear; say '"installing"'; say '"failed","reason":"write"'; exit 1)";
        case Update::failsToDownload:
            return std::string(Engine::finds) + R"(; hear; say '"failed","reason":"stalled"')";
        case Update::findsAnother:
            return R"(say '"found","version":"1.2","notes":"","length":9'; hear)";
        case Update::hangs:
            break;
        }
        return "exec sleep 60";
    }

    Engine mEngine;
    FakeLog mLog;
    EngineUpdater mUpdater{{QStringLiteral("/a/bundle"), QString::fromStdString(mEngine.path()),
                            QStringLiteral("/a/host")},
                           mLog};
};

template <typename Bench> class UpdaterContract : public testing::Test
{
protected:
    UpdaterContract() { updater().setDelegate(mRecorder); }

    Updater& updater() { return mBench.updater(); }
    Stage stage() { return updater().status().stage; }
    bool reaches(Stage wanted)
    {
        mBench.goOn();
        return waitUntil([&] { return stage() == wanted; });
    }
    void find(Update update)
    {
        mBench.follow(Search::finds, update);
        updater().checkForUpdates();
        ASSERT_TRUE(reaches(Stage::found));
    }
    void getReady(Update update)
    {
        ASSERT_NO_FATAL_FAILURE(find(update));
        updater().downloadUpdate();
        ASSERT_TRUE(reaches(Stage::ready));
    }

    Bench mBench;
    std::shared_ptr<UpdateRecorder> mRecorder = std::make_shared<UpdateRecorder>();
};

using Benches = testing::Types<FakeBench, EngineBench>;
TYPED_TEST_SUITE(UpdaterContract, Benches);

TYPED_TEST(UpdaterContract, KeepsWhetherSomebodyLooksUnaskedAndDoesNothingAboutIt)
{
    EXPECT_FALSE(this->updater().automaticallyChecksForUpdates());
    this->updater().setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(this->updater().automaticallyChecksForUpdates());
    EXPECT_EQ(this->stage(), Stage::idle);
}

TYPED_TEST(UpdaterContract, ASearchEndsAsWhatItCameTo)
{
    struct Row {
        Search search;
        Stage end;
    };
    for (const Row& row : {Row{Search::findsNothing, Stage::current},
                           Row{Search::finds, Stage::found}, Row{Search::fails, Stage::failed}}) {
        this->mBench.follow(row.search, Update::installs);
        this->mRecorder->stages.clear();
        this->updater().checkForUpdates();
        EXPECT_EQ(this->stage(), Stage::checking);
        EXPECT_TRUE(this->reaches(row.end));
        EXPECT_THAT(this->mRecorder->stages, ElementsAre(Stage::checking, row.end));
    }
    EXPECT_EQ(this->updater().status().problem, UpdateProblem::server);
    EXPECT_EQ(this->updater().status().version, "");
}

TYPED_TEST(UpdaterContract, WhatIsFoundHasAVersionAndNotes)
{
    this->find(Update::installs);
    EXPECT_EQ(this->updater().status().version, "1.1");
    EXPECT_EQ(this->updater().status().notes, "Faster.");
    EXPECT_EQ(this->updater().status().length, 1000);
}

TYPED_TEST(UpdaterContract, AnUpdateWaitsForTheWordThenTellsBeforeItInstalls)
{
    this->getReady(Update::installs);
    EXPECT_THAT(this->mRecorder->installing, IsEmpty());
    this->mRecorder->stages.clear();
    this->updater().installUpdate();
    EXPECT_THAT(this->mRecorder->installing, ElementsAre("1.1"));
    EXPECT_EQ(this->mRecorder->stageBeforeInstallation, Stage::ready);
    EXPECT_TRUE(this->reaches(Stage::installed));
    EXPECT_THAT(this->mRecorder->stages, ElementsAre(Stage::installing, Stage::installed));
    EXPECT_EQ(this->updater().status().version, "1.1");
}

TYPED_TEST(UpdaterContract, ADownloadGoesThroughItsStages)
{
    this->getReady(Update::installs);
    EXPECT_THAT(this->mRecorder->stages,
                ElementsAre(Stage::checking, Stage::found, Stage::downloading, Stage::verifying,
                            Stage::ready));
    EXPECT_EQ(this->updater().status().received, 1000);
}

TYPED_TEST(UpdaterContract, WhatFailsKeepsItsVersionAndSaysWhy)
{
    this->find(Update::failsToDownload);
    this->updater().downloadUpdate();
    EXPECT_TRUE(this->reaches(Stage::failed));
    EXPECT_EQ(this->updater().status().problem, UpdateProblem::stalled);
    EXPECT_EQ(this->updater().status().version, "1.1");

    this->getReady(Update::failsToInstall);
    this->updater().installUpdate();
    EXPECT_TRUE(this->reaches(Stage::failed));
    EXPECT_EQ(this->updater().status().problem, UpdateProblem::write);
}

TYPED_TEST(UpdaterContract, AnotherVersionThanTheOneAgreedToIsOnlyFound)
{
    this->find(Update::findsAnother);
    this->updater().downloadUpdate();
    EXPECT_TRUE(this->reaches(Stage::found));
    EXPECT_EQ(this->updater().status().version, "1.2");
    EXPECT_THAT(this->mRecorder->installing, IsEmpty());
}

TYPED_TEST(UpdaterContract, WhatDoesNotFitIsIgnored)
{
    this->updater().downloadUpdate();
    this->updater().installUpdate();
    this->updater().cancel();
    EXPECT_THAT(this->mRecorder->stages, IsEmpty());
    this->find(Update::installs);
    this->updater().installUpdate();
    this->updater().cancel();
    EXPECT_EQ(this->stage(), Stage::found);
    this->getReady(Update::installs);
    this->updater().checkForUpdates();
    this->updater().downloadUpdate();
    EXPECT_EQ(this->stage(), Stage::ready);
    this->updater().installUpdate();
    this->updater().cancel();
    EXPECT_EQ(this->stage(), Stage::installing) << "that cannot be taken back";
    EXPECT_TRUE(this->reaches(Stage::installed));
}

TYPED_TEST(UpdaterContract, WhatIsCancelledEndsAtOnceAndTellsNoMore)
{
    this->mBench.follow(Search::hangs, Update::hangs);
    this->updater().checkForUpdates();
    this->updater().cancel();
    EXPECT_EQ(this->stage(), Stage::cancelled);
    this->find(Update::hangs);
    this->updater().downloadUpdate();
    this->updater().cancel();
    EXPECT_EQ(this->stage(), Stage::cancelled);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(this->mRecorder->stages.back(), Stage::cancelled);
    this->getReady(Update::installs);
    this->updater().cancel();
    EXPECT_EQ(this->stage(), Stage::cancelled);
    EXPECT_THAT(this->mRecorder->installing, IsEmpty());
}

TYPED_TEST(UpdaterContract, NobodyIsToldWhoHasGone)
{
    this->mBench.follow(Search::finds, Update::installs);
    const std::weak_ptr<UpdateRecorder> gone = this->mRecorder;
    this->mRecorder.reset();
    EXPECT_TRUE(gone.expired()) << "it is not held";
    this->updater().checkForUpdates();
    EXPECT_TRUE(this->reaches(Stage::found));
}

template <typename Kind> std::unique_ptr<Updaters> makeUpdaters();
template <> std::unique_ptr<Updaters> makeUpdaters<FakeUpdaters>()
{
    return std::make_unique<FakeUpdaters>();
}
template <> std::unique_ptr<Updaters> makeUpdaters<EngineUpdaters>()
{
    static FakeLog log;
    return std::make_unique<EngineUpdaters>(QStringLiteral("/a/host"), log);
}

template <typename Kind> class UpdatersContract : public testing::Test
{
};

using Kinds = testing::Types<FakeUpdaters, EngineUpdaters>;
TYPED_TEST_SUITE(UpdatersContract, Kinds);

TYPED_TEST(UpdatersContract, KeepOneUpdaterForEachBundle)
{
    const auto updaters = makeUpdaters<TypeParam>();
    const auto one = updaters->updaterForBundle("/a/One.prefPane");
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(updaters->updaterForBundle("/a/One.prefPane"), one);
    EXPECT_NE(updaters->updaterForBundle("/a/Two.prefPane"), one);
    EXPECT_NE(updaters->updaterForBundle(""), nullptr);
}

} // namespace
} // namespace farview
