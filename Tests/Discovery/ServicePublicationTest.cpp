#include "Platform/Desktop/Discovery/ServicePublication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using State = EntryGroup::State;

/// Announces nothing; the test plays the network's answers.
class ScriptedMaker : public EntryGroupMaker
{
public:
    std::vector<std::string> log;
    EntryGroup::StateChanged hostChanged;
    EntryGroup::StateChanged serviceChanged;

    struct Group : EntryGroup {
        Group(ScriptedMaker& usedMaker, std::string usedName)
            : maker(usedMaker), name(std::move(usedName))
        {
            maker.log.push_back("+" + name);
        }
        ~Group() override { maker.log.push_back("-" + name); }
        void updateTXTRecord(const ServiceAnnouncement&) override
        {
            maker.log.push_back("txt " + name);
        }
        ScriptedMaker& maker;
        std::string name;
    };

    std::unique_ptr<EntryGroup> announceHost(const std::string& host,
                                             const std::vector<HostAddress>&,
                                             EntryGroup::StateChanged changed) override
    {
        hostChanged = std::move(changed);
        return std::make_unique<Group>(*this, host);
    }
    std::unique_ptr<EntryGroup> announceService(const ServiceAnnouncement& announcement,
                                                const std::string& host,
                                                EntryGroup::StateChanged changed) override
    {
        serviceChanged = std::move(changed);
        return std::make_unique<Group>(*this, announcement.name + "@" + host);
    }
};

class ServicePublications : public testing::Test
{
protected:
    ServicePublication::Events events()
    {
        return {[this](const std::string& name) { mHeard.push_back("published " + name); },
                [this](const std::string& name) { mHeard.push_back("renamed " + name); },
                [this](const std::string&, bool isFinal) {
                    mHeard.push_back(isFinal ? "failed for good" : "failed");
                }};
    }
    void answerHost(State state)
    {
        const auto changed = mMaker.hostChanged;
        changed(state);
    }
    void answerService(State state)
    {
        const auto changed = mMaker.serviceChanged;
        changed(state);
    }

    const std::vector<HostAddress> mAddresses{{2, "10.0.0.1", false}};
    std::vector<std::string> mHeard;
    ScriptedMaker mMaker;
    ServicePublication mPublication{
        mMaker, {"Desk", "_qlexvscreen._udp", 6001, {}, "desk"}, events()};
};

TEST_F(ServicePublications, TheServiceFollowsItsHost)
{
    mPublication.begin(mAddresses);
    EXPECT_THAT(mMaker.log, ElementsAre("+desk.local"));
    answerHost(State::established);
    EXPECT_THAT(mMaker.log, ElementsAre("+desk.local", "+Desk@desk.local"));
    EXPECT_THAT(mHeard, IsEmpty());
    answerService(State::established);
    EXPECT_THAT(mHeard, ElementsAre("published Desk"));
}

TEST_F(ServicePublications, ATakenHostNameChangesTheHostOnly)
{
    mPublication.begin(mAddresses);
    answerHost(State::collision);
    answerHost(State::established);
    answerService(State::established);
    EXPECT_EQ(mMaker.log.back(), "+Desk@desk-2.local");
    EXPECT_THAT(mHeard, ElementsAre("published Desk"));
}

TEST_F(ServicePublications, ATakenServiceNameChangesTheServiceOnly)
{
    mPublication.begin(mAddresses);
    answerHost(State::established);
    answerService(State::collision);
    answerService(State::collision);
    answerService(State::established);
    EXPECT_EQ(mMaker.log.back(), "+Desk #3@desk.local");
    EXPECT_THAT(mHeard, ElementsAre("renamed Desk #2", "renamed Desk #3", "published Desk #3"));
}

TEST_F(ServicePublications, SomebodyWhoTakesEveryNameIsGivenUpOn)
{
    mPublication.begin(mAddresses);
    answerHost(State::established);
    for (int round = 0; round < 51; ++round)
        answerService(State::collision);
    EXPECT_EQ(mHeard.back(), "failed");
}

TEST_F(ServicePublications, AnInvalidRecordFailsForGood)
{
    mPublication.begin(mAddresses);
    answerHost(State::established);
    answerService(State::invalid);
    EXPECT_THAT(mHeard, ElementsAre("failed for good"));
}

TEST_F(ServicePublications, WithoutANetworkItWaitsForAddresses)
{
    mPublication.begin({});
    EXPECT_THAT(mMaker.log, IsEmpty());
    mPublication.setAddresses(mAddresses);
    answerHost(State::established);
    mMaker.log.clear();
    mPublication.setAddresses(mAddresses);
    EXPECT_THAT(mMaker.log, IsEmpty());
    mPublication.setAddresses({{2, "10.0.0.9", false}});
    answerHost(State::established);
    EXPECT_THAT(mMaker.log, ElementsAre("-desk.local", "+desk.local"));
}

TEST_F(ServicePublications, ARecordThatChangesBeforeTheServiceIsThereIsNotLost)
{
    mPublication.begin(mAddresses);
    mPublication.updateTXTRecord({{"ConnState", Data::fromText("Connected")}});
    EXPECT_EQ(mPublication.announcement().TXTRecord.size(), 1u);
    answerHost(State::established);
    mPublication.updateTXTRecord({});
    EXPECT_EQ(mMaker.log.back(), "txt Desk@desk.local");
}

} // namespace
} // namespace farview
