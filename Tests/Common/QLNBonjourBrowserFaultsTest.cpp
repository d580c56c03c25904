#include "Tests/Common/BrowserFixture.h"

#include <gmock/gmock.h>

using farview::Duration;
using farview::FakeResolve;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

class QLNBonjourBrowserFaults : public BrowserFixture
{
};

TEST_F(QLNBonjourBrowserFaults, TenDeadOnesBesideALiveOneAreListedWithinSixSeconds)
{
    browser->init();
    std::vector<farview::FakeDevice> devices;
    for (int number = 0; number < 10; ++number)
        devices.push_back(device("Dead" + std::to_string(number), neverAnswers()));
    devices.push_back(device("Alive"));
    announce(std::move(devices));
    advance(6);
    EXPECT_THAT(active(), SizeIs(11));
    EXPECT_THAT(active(), Contains("Alive"));
}

TEST_F(QLNBonjourBrowserFaults, ABodyThatNeverReportsIsWaitedForFiveSecondsOnly)
{
    browser->init();
    announce({device("Mute", {FakeResolve::Outcome::never, Duration(0), false})});
    advance(5);
    EXPECT_THAT(active(), ElementsAre("Mute"));
}

TEST_F(QLNBonjourBrowserFaults, AnAnswerAfterTheTimeOutIsAnnouncedAndEndsNoOtherWait)
{
    browser->init();
    announce({device("Late", {FakeResolve::Outcome::succeeds, Duration(7), false})});
    advance(5);
    EXPECT_THAT(active(), ElementsAre("Late"));
    announce({device("Slow", answersAfter(4))});
    forget();
    advance(2);
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService")) << "from Late";
    EXPECT_THAT(active(), ElementsAre("Late"));
    advance(2);
    EXPECT_THAT(active(), ElementsAre("Late", "Slow"));
}

TEST_F(QLNBonjourBrowserFaults, OneAnswerEndsTheWaitForThatServiceOnly)
{
    find({device("Desk", answersAfter(1)), device("Sofa", answersAfter(2)),
          device("Wall", answersAfter(3))});
    EXPECT_EQ(fake.runLoop.waitCount(), 3U);
    advance(1);
    EXPECT_EQ(fake.runLoop.waitCount(), 2U);
    advance(1);
    EXPECT_EQ(fake.runLoop.waitCount(), 1U);
    advance(1);
    EXPECT_EQ(fake.runLoop.waitCount(), 0U);
}

TEST_F(QLNBonjourBrowserFaults, TheSameServiceTwiceInABatchDoesNotHoldItUp)
{
    browser->init();
    const auto service = std::make_shared<farview::FakeNetService>(
        fake.runLoop, std::make_shared<farview::FakeDevice>(device("Desk")));
    browser->didFindService(*browser->browser(), service, true);
    browser->didFindService(*browser->browser(), service, false);
    settle();
    EXPECT_THAT(active(), ElementsAre("Desk", "Desk"));
}

TEST_F(QLNBonjourBrowserFaults, ABatchBeingResolvedIsAppliedAfterAStop)
{
    find({device("Slow", answersAfter(3))});
    browser->stop();
    advance(3);
    EXPECT_THAT(active(), ElementsAre("Slow"));
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService", "DidAddService"));
}

TEST_F(QLNBonjourBrowserFaults, NothingHappensWhenItIsDestroyedWhileResolving)
{
    find({device("Slow", answersAfter(3)), device("Dead", neverAnswers())});
    findMore({device("Waiting")});
    const auto services = fake.discovery.browsers().back()->services();
    forget();
    browser.reset();
    advance(60);
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_EQ(fake.runLoop.pendingCount(), 0U);
    EXPECT_THAT(fake.discovery.browsers(), IsEmpty()) << "its search ended with it";
    EXPECT_THAT(services, SizeIs(3));
}

TEST_F(QLNBonjourBrowserFaults, MayBeLetGoOfByWhoHearsOfAnyAnnouncement)
{
    for (const char* name : {kQLNBonjourBrowserWillAddService, kQLNBonjourBrowserDidUpdateService,
                             kQLNBonjourBrowserDidAddService, kQLNBonjourBrowserWillRemoveService,
                             kQLNBonjourBrowserDidRemoveService}) {
        browser = makeBrowser();
        browser->init();
        const std::weak_ptr<QLNBonjourBrowser> watched = browser;
        journalLife = std::make_shared<int>();
        whenPosted(name, [this] { browser.reset(); });
        announce({device("Desk")});
        settle();
        announce({device("Sofa")});
        fake.discovery.remove({"Desk", "Sofa"});
        advance(10);
        EXPECT_TRUE(watched.expired()) << name;
    }
}

TEST_F(QLNBonjourBrowserFaults, MayBeStoppedAndStartedAnewByWhoHearsOfABatch)
{
    int rounds = 0;
    whenPosted(kQLNBonjourBrowserDidAddService, [&] {
        if (++rounds > 1)
            return;
        browser->stop();
        browser->start();
    });
    find({device("Desk")});
    EXPECT_EQ(rounds, 2);
    EXPECT_THAT(active(), ElementsAre("Desk", "Desk")) << "a new search reports all again";
}

TEST_F(QLNBonjourBrowserFaults, EmptyingTheListBeforeTheResolvesDoesNotHoldItUp)
{
    whenPosted(kQLNBonjourBrowserWillAddService, [&] { browser->setUpdatedServiceList({}); });
    find({device("Desk")});
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidAddService"));
    findMore({device("Sofa")});
    EXPECT_EQ(journal.size(), 4U);
}

TEST_F(QLNBonjourBrowserFaults, ASuspensionAndAClockJumpWhileResolvingChangeNothing)
{
    browser->init();
    announce({device("Slow", answersAfter(4))});
    advance(1);
    fake.runLoop.suspend(Duration(3600));
    fake.runLoop.jumpWallClock(Duration(-7200));
    settle();
    EXPECT_THAT(active(), IsEmpty());
    advance(3);
    EXPECT_THAT(active(), ElementsAre("Slow"));
}

TEST_F(QLNBonjourBrowserFaults, FiveHundredAtOnceAreOneBatch)
{
    browser->init();
    std::vector<farview::FakeDevice> devices;
    std::vector<std::string> devicesNames;
    for (int number = 0; number < 500; ++number) {
        devices.push_back(device("Device" + std::to_string(number)));
        devicesNames.push_back(devices.back().name);
    }
    findMore(std::move(devices));
    EXPECT_EQ(active(), devicesNames);
    EXPECT_THAT(journal, SizeIs(502));
    fake.discovery.remove(devicesNames);
    settle();
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_THAT(journal, SizeIs(504));
}

} // namespace
