#include "Tests/Common/BrowserFixture.h"

#include <gmock/gmock.h>

using farview::Duration;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class QLNBonjourBrowserTest : public BrowserFixture
{
protected:
    std::vector<std::string> removedNames() const
    {
        const auto found = notifications.back().find(kQLNBonjourBrowserDidRemoveServiceNamesKey);
        return found == notifications.back().end()
                   ? std::vector<std::string>{}
                   : std::get<std::vector<std::string>>(found->second);
    }
};

TEST_F(QLNBonjourBrowserTest, TheServiceTypeIsNotSetByItself)
{
    QLNBonjourBrowser::setBonjourServiceName(std::nullopt);
    EXPECT_EQ(QLNBonjourBrowser::bonjourServiceName(), std::nullopt);
    QLNBonjourBrowser::setBonjourServiceName("_type._udp");
    EXPECT_EQ(QLNBonjourBrowser::bonjourServiceName(), "_type._udp");
}

TEST_F(QLNBonjourBrowserTest, SearchesNothingBeforeATypeIsSet)
{
    QLNBonjourBrowser::setBonjourServiceName(std::nullopt);
    announce({device("Desk")});
    browser->init();
    settle();
    EXPECT_EQ(fake.discovery.browsers().back()->searchCount(), 0);
    EXPECT_THAT(journal, IsEmpty());
    QLNBonjourBrowser::setBonjourServiceName(kVirtualScreenServiceName);
    browser->start();
    settle();
    EXPECT_THAT(active(), ElementsAre("Desk"));
}

TEST_F(QLNBonjourBrowserTest, InitSearchesAtOnceForTheTypeInTheLocalDomain)
{
    browser->init();
    const auto search = fake.discovery.browsers().back();
    EXPECT_EQ(browser->browser(), search);
    EXPECT_TRUE(search->isSearching());
    EXPECT_EQ(search->searchedType(), "_qlexvscreen._udp");
    EXPECT_EQ(search->searchedDomain(), "local.");
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_THAT(names(browser->updatedServiceList()), IsEmpty());
    EXPECT_FALSE(browser->monitorTXTRecordUpdates());
}

TEST_F(QLNBonjourBrowserTest, TheOtherInitWaitsForStart)
{
    announce({device("Desk")});
    browser->initWithoutStartingService();
    settle();
    EXPECT_FALSE(fake.discovery.browsers().back()->isSearching());
    browser->start();
    EXPECT_THAT(journal, IsEmpty()) << "nothing is called inside start";
    settle();
    EXPECT_THAT(active(), ElementsAre("Desk"));
}

TEST_F(QLNBonjourBrowserTest, ThreeInOneBatchAreOneAnnouncementAndThreeResolves)
{
    find({device("Desk"), device("Sofa"), device("Wall")});
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService", "DidUpdateService",
                                     "DidUpdateService", "DidAddService"));
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa", "Wall"));
    EXPECT_THAT(names(browser->updatedServiceList()), IsEmpty());
    for (const auto& service : fake.discovery.browsers().back()->services()) {
        EXPECT_EQ(service->resolveCount(), 1);
        EXPECT_EQ(service->lastTimeout(), Duration(5));
        EXPECT_EQ(service->delegate().lock(), browser);
    }
}

TEST_F(QLNBonjourBrowserTest, EveryAnnouncementNamesTheBrowserAsItsObject)
{
    browser->init();
    announce({device("Desk")});
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_EQ(posters.size(), 5U);
    EXPECT_THAT(posters, Each(browser.get()));
}

TEST_F(QLNBonjourBrowserTest, TheResolvesOfABatchBeginTogether)
{
    find({device("Desk", answersAfter(2)), device("Sofa", answersAfter(3))});
    for (const auto& service : fake.discovery.browsers().back()->services())
        EXPECT_TRUE(service->isResolving());
    EXPECT_EQ(browser->currentLoop(), &fake.runLoop);
    EXPECT_THAT(names(browser->updatedServiceList()), ElementsAre("Desk", "Sofa"));
    advance(3);
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa"));
}

TEST_F(QLNBonjourBrowserTest, TheListKeepsTheOrderOfTheReportsNotOfTheAnswers)
{
    browser->init();
    announce({device("Slow", answersAfter(3)), device("Quick"), device("Middle", answersAfter(1))});
    advance(3);
    EXPECT_THAT(active(), ElementsAre("Slow", "Quick", "Middle"));
}

TEST_F(QLNBonjourBrowserTest, ABatchIsAppliedWhenItsLastResolveHasEnded)
{
    browser->init();
    announce({device("Quick"), device("Slow", answersAfter(3))});
    advance(2.9);
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService"));
    EXPECT_THAT(active(), IsEmpty());
    advance(0.1);
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService", "DidUpdateService",
                                     "DidAddService"));
}

TEST_F(QLNBonjourBrowserTest, AServiceThatFailsToResolveIsListedToo)
{
    find({device("Fails", fails()), device("Desk")});
    EXPECT_THAT(active(), ElementsAre("Fails", "Desk"));
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService", "DidAddService"));
}

TEST_F(QLNBonjourBrowserTest, AServiceThatNeverAnswersIsListedAfterFiveSeconds)
{
    browser->init();
    announce({device("Dead", neverAnswers())});
    advance(4.9);
    EXPECT_THAT(active(), IsEmpty());
    advance(0.1);
    EXPECT_THAT(active(), ElementsAre("Dead"));
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidAddService"));
}

TEST_F(QLNBonjourBrowserTest, EachBatchAddsBehindTheOneBefore)
{
    find({device("Desk")});
    findMore({device("Sofa"), device("Wall")});
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa", "Wall"));
    EXPECT_EQ(fake.discovery.service("Desk")->resolveCount(), 1);
}

TEST_F(QLNBonjourBrowserTest, AServiceReportedTwiceIsListedTwice)
{
    browser->init();
    announce({device("Desk")});
    findMore({device("Desk")});
    EXPECT_THAT(active(), ElementsAre("Desk", "Desk"));
}

TEST_F(QLNBonjourBrowserTest, AnAppliedBatchCanBeSeenByWhoHearsOfIt)
{
    std::vector<std::string> seen;
    whenPosted(kQLNBonjourBrowserDidAddService, [&] { seen = active(); });
    find({device("Desk"), device("Sofa")});
    EXPECT_THAT(seen, ElementsAre("Desk", "Sofa"));
}

TEST_F(QLNBonjourBrowserTest, TwoRemovedInOneBatchAreOneAnnouncementWithBothNames)
{
    find({device("Desk"), device("Sofa"), device("Wall")});
    forget();
    fake.discovery.remove({"Wall", "Desk"});
    settle();
    EXPECT_THAT(journal, ElementsAre("WillRemoveService", "DidRemoveService"));
    EXPECT_THAT(removedNames(), ElementsAre("Wall", "Desk"));
    EXPECT_THAT(active(), ElementsAre("Sofa"));
    EXPECT_THAT(names(browser->updatedServiceList()), IsEmpty());
}

TEST_F(QLNBonjourBrowserTest, ADepartingServiceIsResolvedOnceMoreForNobody)
{
    browser->init();
    announce({device("Desk", answersAfter(1))});
    advance(1);
    const auto service = fake.discovery.service("Desk");
    forget();
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_EQ(service->resolveCount(), 2);
    EXPECT_EQ(service->delegate().lock(), nullptr);
    EXPECT_THAT(journal, ElementsAre("WillRemoveService", "DidRemoveService"))
        << "it is not waited for";
    advance(10);
    EXPECT_EQ(journal.size(), 2U);
}

TEST_F(QLNBonjourBrowserTest, RemovalGoesByEqualityNotByIdentity)
{
    find({device("Desk"), device("Sofa")});
    const auto twin = std::make_shared<farview::FakeNetService>(
        fake.runLoop, std::make_shared<farview::FakeDevice>(device("Desk")));
    browser->didRemoveService(*browser->browser(), twin, false);
    EXPECT_THAT(active(), ElementsAre("Sofa"));
    EXPECT_THAT(removedNames(), ElementsAre("Desk"));
}

TEST_F(QLNBonjourBrowserTest, RemovingAnUnknownServiceIsAnnouncedAllTheSame)
{
    browser->init();
    const auto stranger = std::make_shared<farview::FakeNetService>(
        fake.runLoop, std::make_shared<farview::FakeDevice>(device("Stranger")));
    browser->didRemoveService(*browser->browser(), stranger, false);
    EXPECT_THAT(removedNames(), ElementsAre("Stranger"));
}

TEST_F(QLNBonjourBrowserTest, WhatIsFoundMeanwhileWaitsForTheBatchBefore)
{
    find({device("Slow", answersAfter(3))});
    announce({device("Quick")});
    advance(1);
    EXPECT_THAT(journal, ElementsAre("WillAddService"));
    EXPECT_THAT(names(browser->updatedServiceList()), ElementsAre("Slow"));
    advance(2);
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateService", "DidAddService",
                                     "WillAddService", "DidUpdateService", "DidAddService"));
    EXPECT_THAT(active(), ElementsAre("Slow", "Quick"));
}

TEST_F(QLNBonjourBrowserTest, WhatIsRemovedMeanwhileIsRemovedAfterTheBatchWasApplied)
{
    find({device("Slow", answersAfter(3)), device("Desk")});
    forget();
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_THAT(journal, IsEmpty());
    advance(3);
    EXPECT_THAT(journal, ElementsAre("DidUpdateService", "DidAddService", "WillRemoveService",
                                     "DidRemoveService"));
    EXPECT_THAT(active(), ElementsAre("Slow"));
}

TEST_F(QLNBonjourBrowserTest, WaitingReportsAreHandledInTheOrderOfTheirArrival)
{
    find({device("First", answersAfter(2))});
    announce({device("Second", answersAfter(2))});
    fake.discovery.remove({"Second"});
    announce({device("Third"), device("Fourth")});
    fake.discovery.remove({"First", "Fourth"});
    advance(4);
    EXPECT_THAT(journal,
                ElementsAre("WillAddService", "DidUpdateService", "DidAddService", // First
                            "WillAddService", "DidUpdateService", "DidAddService", // Second
                            "WillRemoveService", "DidRemoveService",               // Second
                            "WillAddService", "DidUpdateService", "DidUpdateService",
                            "DidAddService",                           // Third, Fourth
                            "WillRemoveService", "DidRemoveService")); // First, Fourth
    EXPECT_THAT(active(), ElementsAre("Third"));
}

TEST_F(QLNBonjourBrowserTest, StopEndsTheSearch)
{
    browser->init();
    browser->stop();
    findMore({device("Desk")});
    EXPECT_FALSE(fake.discovery.browsers().back()->isSearching());
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(QLNBonjourBrowserTest, AccessorsAreJustThat)
{
    find({device("Desk")});
    const auto list = browser->activeServiceList();
    browser->setActiveServiceList({});
    browser->setUpdatedServiceList(list);
    browser->setCurrentLoop(nullptr);
    EXPECT_THAT(active(), IsEmpty());
    EXPECT_THAT(names(browser->updatedServiceList()), ElementsAre("Desk"));
    EXPECT_EQ(browser->currentLoop(), nullptr);
    browser->setBrowser(nullptr);
    browser->start();
    browser->stop();
    EXPECT_EQ(browser->browser(), nullptr);
}

} // namespace
