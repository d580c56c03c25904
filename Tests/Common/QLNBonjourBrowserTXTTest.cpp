#include "Tests/Common/BrowserFixture.h"

#include <gmock/gmock.h>

using farview::Data;
using farview::NetService;
using farview::Object;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Record = std::map<std::string, Data>;

TEST(StringWithData, IsNothingForNoDataAndForLessThanTwoBytes)
{
    const Data empty;
    const Data one = Data::fromText("C");
    EXPECT_EQ(stringWithData(nullptr), std::nullopt);
    EXPECT_EQ(stringWithData(&empty), std::nullopt);
    EXPECT_EQ(stringWithData(&one), std::nullopt);
}

TEST(StringWithData, IsTheWholeTextFromTwoBytesOn)
{
    const Data two = Data::fromText("No");
    const Data connected = Data::fromText("Connected");
    const Data withZero = Data::fromText(std::string("Connected\0", 10));
    EXPECT_EQ(stringWithData(&two), "No");
    EXPECT_EQ(stringWithData(&connected), "Connected");
    EXPECT_EQ(stringWithData(&withZero), std::string("Connected\0", 10));
}

TEST(StringWithData, IsNothingForBytesThatAreNotASCII)
{
    const Data umlaut = Data::fromText("Büro");
    const Data binary = Data{{0xff, 0xfe}};
    EXPECT_EQ(stringWithData(&umlaut), std::nullopt);
    EXPECT_EQ(stringWithData(&binary), std::nullopt);
}

class QLNBonjourBrowserTXT : public BrowserFixture
{
protected:
    void listDevice()
    {
        browser->init();
        browser->setMonitorTXTRecordUpdates(true);
        announce({device("Desk"), device("Sofa")});
        settle();
        forget();
    }
    Record announcedRecord() const
    {
        return std::get<Record>(
            notifications.front().at(kQLNBonjourBrowserDidUpdateTXTRecordTXTRecordKey));
    }
};

TEST_F(QLNBonjourBrowserTXT, MonitorsNothingUnlessAsked)
{
    find({device("Desk")});
    EXPECT_FALSE(fake.discovery.service("Desk")->isMonitoring());
    const auto service = fake.discovery.service("Desk");
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_EQ(service->stopMonitoringCount(), 0);
}

TEST_F(QLNBonjourBrowserTXT, TheFlagTakesEffectAtTheNextBatchOfFindsForAllThatAreListed)
{
    find({device("Desk")});
    browser->setMonitorTXTRecordUpdates(true);
    settle();
    EXPECT_FALSE(fake.discovery.service("Desk")->isMonitoring());
    findMore({device("Sofa")});
    EXPECT_TRUE(fake.discovery.service("Desk")->isMonitoring());
    EXPECT_TRUE(fake.discovery.service("Sofa")->isMonitoring());
}

TEST_F(QLNBonjourBrowserTXT, TheFlagSetRightAfterInitHoldsForTheFirstBatch)
{
    announce({device("Desk")});
    browser->init();
    browser->setMonitorTXTRecordUpdates(true);
    settle();
    EXPECT_TRUE(fake.discovery.service("Desk")->isMonitoring());
}

TEST_F(QLNBonjourBrowserTXT, ARemovedServiceIsNoLongerMonitored)
{
    listDevice();
    const auto desk = fake.discovery.service("Desk");
    fake.discovery.remove({"Desk"});
    settle();
    EXPECT_FALSE(desk->isMonitoring());
    EXPECT_TRUE(fake.discovery.service("Sofa")->isMonitoring());
}

TEST_F(QLNBonjourBrowserTXT, AChangedRecordIsAnnouncedAfterHalfASecondAndResolvedAgain)
{
    listDevice();
    fake.discovery.setTXTRecord("Desk", {{"ConnState", Data::fromText("Connected")}});
    advance(0.4);
    EXPECT_THAT(journal, IsEmpty());
    browser->setCurrentLoop(nullptr);
    advance(0.1);
    EXPECT_THAT(journal, ElementsAre("DidUpdateTXTRecord", "DidUpdateService"));
    EXPECT_EQ(announcedRecord(), (Record{{"ConnState", Data::fromText("Connected")}}));
    const auto announced = std::get<std::shared_ptr<Object>>(
        notifications.front().at(kQLNBonjourBrowserDidUpdateTXTRecordServiceKey));
    EXPECT_EQ(announced, fake.discovery.service("Desk"));
    EXPECT_EQ(fake.discovery.service("Desk")->resolveCount(), 2);
    EXPECT_EQ(fake.discovery.service("Sofa")->resolveCount(), 1);
    EXPECT_EQ(browser->currentLoop(), &fake.runLoop);
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa"));
}

TEST_F(QLNBonjourBrowserTXT, TheResolveAfterAChangeIsNotWaitedFor)
{
    listDevice();
    fake.discovery.setResolve("Desk", neverAnswers());
    fake.discovery.setTXTRecord("Desk", {});
    advance(0.5);
    EXPECT_THAT(journal, ElementsAre("DidUpdateTXTRecord"));
    findMore({device("Wall")});
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa", "Wall"));
    advance(5);
    EXPECT_THAT(journal, ElementsAre("DidUpdateTXTRecord", "WillAddService", "DidUpdateService",
                                     "DidAddService"));
}

TEST_F(QLNBonjourBrowserTXT, AChangeDuringABatchEndsNoWaitOfIt)
{
    listDevice();
    announce({device("Slow", answersAfter(4))});
    fake.discovery.setTXTRecord("Desk", {});
    advance(1);
    EXPECT_THAT(journal, ElementsAre("WillAddService", "DidUpdateTXTRecord", "DidUpdateService"));
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa"));
    advance(3);
    EXPECT_THAT(active(), ElementsAre("Desk", "Sofa", "Slow"));
}

TEST_F(QLNBonjourBrowserTXT, HostileRecordsAreAnnouncedAsWhatCouldBeRead)
{
    listDevice();
    std::string oversized;
    for (int entry = 0; entry < 300; ++entry)
        oversized += "\x04k" + std::string(1, static_cast<char>('a' + entry % 26)) + "=v";
    const auto zeros = std::string(70000, '\0');
    for (const auto& raw : {std::string(1, '\0'), std::string("\xff"), std::string("\x05short"),
                            std::string("\x09"
                                        "ConnState"),
                            oversized, zeros}) {
        forget();
        fake.discovery.setRawTXTRecord("Desk", Data::fromText(raw));
        advance(1);
        EXPECT_THAT(journal, ElementsAre("DidUpdateTXTRecord", "DidUpdateService"));
        EXPECT_EQ(announcedRecord(), NetService::dictionaryFromTXTRecordData(Data::fromText(raw)));
    }
}

TEST_F(QLNBonjourBrowserTXT, AnEmptyRecordIsAnnouncedAsEmpty)
{
    listDevice();
    browser->didUpdateTXTRecordData(fake.discovery.service("Desk"), Data{});
    advance(1);
    EXPECT_THAT(announcedRecord(), IsEmpty());
}

TEST_F(QLNBonjourBrowserTXT, AChangeOfADestroyedBrowserIsForgotten)
{
    listDevice();
    fake.discovery.setTXTRecord("Desk", {});
    settle();
    const auto desk = fake.discovery.service("Desk");
    browser.reset();
    advance(1);
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_EQ(desk->resolveCount(), 1);
}

TEST_F(QLNBonjourBrowserTXT, AnUpdateWithoutAServiceIsOnlyAnnounced)
{
    browser->init();
    browser->updateService({});
    browser->updateService(
        {{kQLNBonjourBrowserDidUpdateTXTRecordServiceKey, std::string("no service")}});
    EXPECT_THAT(journal, ElementsAre("DidUpdateTXTRecord", "DidUpdateTXTRecord"));
}

} // namespace
