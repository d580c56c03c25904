#include "Tests/Discovery/DiscoveringFixture.h"
#include "Tests/Discovery/RawAnnouncer.h"

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

class HostileDiscovery : public Discovering
{
};

INSTANTIATE_TEST_SUITE_P(Ways, HostileDiscovery, testing::Values(Way::daemon, Way::embedded),
                         nameOfWay);

std::string repeated(const std::string& text, int count)
{
    std::string result;
    for (int index = 0; index < count; ++index)
        result += text;
    return result;
}

TEST_P(HostileDiscovery, AnyTextCanBeAName)
{
    const std::vector<std::string> names = {
        repeated("\xe2\x82\xac", 21),                // 63 bytes of UTF-8
        "\xf0\x9f\x96\xa5 \xe6\xa1\x8c\xe9\x9d\xa2", // beyond the first plane
        "\x01\x02\x1b[31m\n\t\x7f",                  // control characters
        "<b>bold</b> &amp; <img src=x>",             // markup
        "dots.and\\backslashes \"quoted\" 'so'",
        " ",
        "%s%n%p",
    };
    for (const auto& name : names)
        ASSERT_TRUE(mPublisher.publish({name})) << name << ": " << mPublisher.lastError();
    mRecorder->resolvesWhatIsFound = true;
    const auto browser = search(mRecorder);
    ASSERT_TRUE(waitFor(names.size()));
    EXPECT_THAT(mRecorder->names(), UnorderedElementsAreArray(names));
    EXPECT_TRUE(waitForResolves(names.size()));
}

TEST_P(HostileDiscovery, AnEmptyNameCannotBeAnnounced)
{
    EXPECT_FALSE(mPublisher.publish({""}));
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("")}));
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("good")}));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->find("good") != nullptr; }));
    runLoopFor(200ms);
    EXPECT_THAT(mRecorder->names(), ElementsAre("good"));
}

TEST_P(HostileDiscovery, ANameThatIsNotUTF8DoesNotHideTheOthers)
{
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("bad \xff\xfe\xc3")}));
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("good")}));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->find("good") != nullptr; }));
    ASSERT_TRUE(mPublisher.publish({"later"}));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->find("later") != nullptr; }));
    for (const auto& name : mRecorder->names())
        EXPECT_EQ(name.find('\xff'), std::string::npos);
}

TEST_P(HostileDiscovery, AnyRecordSurvives)
{
    const auto browser = search(mRecorder);
    mRecorder->resolvesWhatIsFound = true;
    const std::string binary("\x00\xff\x01=\x00", 5);
    const auto oversized = repeated("\xff" + std::string(255, 'x'), 30);
    ASSERT_TRUE(mPublisher.publish({"empty", {}}));
    ASSERT_TRUE(mPublisher.publish({"one byte", {"x"}}));
    ASSERT_TRUE(mPublisher.publish({"binary", {binary, "ConnState=None"}}));
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("oversized"),
                                    RawAnnouncer::location("oversized", "ghost", 6001),
                                    RawAnnouncer::address("ghost", {10, 77, 0, 9})}));
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::text("oversized", oversized)}));
    ASSERT_TRUE(waitFor(4));
    ASSERT_TRUE(waitForResolves(4));
    const auto entriesOf = [&](const char* name) {
        return NetService::dictionaryFromTXTRecordData(mRecorder->find(name)->TXTRecordData());
    };
    EXPECT_THAT(entriesOf("empty"), IsEmpty());
    EXPECT_THAT(entriesOf("one byte"), ElementsAre(std::pair(std::string("x"), Data{})));
    EXPECT_THAT(entriesOf("binary"),
                Contains(std::pair(std::string("ConnState"), Data::fromText("None"))));
    EXPECT_EQ(mRecorder->find("oversized")->TXTRecordData(), Data::fromText(oversized));
}

TEST_P(HostileDiscovery, BrokenPacketsAreSurvived)
{
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    auto record = RawAnnouncer::pointer("cut");
    record.data.resize(record.data.size() / 2);
    ASSERT_TRUE(RawAnnouncer::send({record}));
    record.data = std::string("\xc0\x0c\xc0\x0c", 4); // points at itself
    ASSERT_TRUE(RawAnnouncer::send({record}));
    for (const auto size : {1, 11, 12, 500, 8000})
        ASSERT_TRUE(RawAnnouncer::sendPacket(std::string(size, '\xa5')));
    ASSERT_TRUE(mPublisher.publish({"good"}));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->find("good") != nullptr; }));
    EXPECT_FALSE(mRecorder->find("cut"));
}

TEST_P(HostileDiscovery, AServiceThatNobodyServesEndsWithTheTimeOut)
{
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("late")}));
    ASSERT_TRUE(waitFor(1));
    const auto service = mRecorder->present.front();
    const auto begin = std::chrono::steady_clock::now();
    service->resolveWithTimeout(Duration(0.5));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->unresolved.size() == 1; }));
    const Duration taken = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(taken.count(), 0.49);
    // The answer that comes now is for nobody, but the next to ask has it at once.
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::location("late", "ghost", 6001),
                                    RawAnnouncer::text("late", std::string(1, '\0')),
                                    RawAnnouncer::address("ghost", {10, 77, 0, 9})}));
    runLoopFor(500ms);
    EXPECT_THAT(mRecorder->resolved, IsEmpty());
    EXPECT_EQ(service->hostName(), std::nullopt);
    service->resolveWithTimeout(Duration(5));
    ASSERT_TRUE(waitForResolves(1));
    EXPECT_EQ(service->hostName(), "ghost.local");
    EXPECT_EQ(mRecorder->unresolved.size(), 1u);
}

TEST_P(HostileDiscovery, TenDeadServicesDoNotKeepALiveOneFromItsAnswer)
{
    mRecorder->resolvesWhatIsFound = true;
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    std::vector<RawAnnouncer::Record> dead;
    for (int index = 0; index < 10; ++index)
        dead.push_back(RawAnnouncer::pointer("dead " + std::to_string(index)));
    ASSERT_TRUE(RawAnnouncer::send(dead));
    ASSERT_TRUE(mPublisher.publish({"alive"}));
    ASSERT_TRUE(waitFor(11));
    ASSERT_TRUE(waitForResolves(1));
    EXPECT_THAT(mRecorder->unresolved, IsEmpty()) << "no dead one was waited for";
    EXPECT_EQ(mRecorder->resolved.front()->name(), "alive");
    // Five seconds each; one after the other they would take fifty.
    ASSERT_TRUE(waitUntil([&] { return mRecorder->unresolved.size() == 10; }, 30s));
}

TEST_P(HostileDiscovery, ARemovalEndsARunningResolve)
{
    const auto browser = search(mRecorder);
    runLoopFor(300ms);
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("dead")}));
    ASSERT_TRUE(waitFor(1));
    const auto service = mRecorder->present.front();
    service->resolveWithTimeout(Duration(60));
    ASSERT_TRUE(RawAnnouncer::send({RawAnnouncer::pointer("dead", 0)}));
    ASSERT_TRUE(waitUntil([&] { return mRecorder->unresolved.size() == 1; }, 30s));
    ASSERT_TRUE(waitFor(0));
    service->resolveWithTimeout(Duration(60));
    EXPECT_EQ(mRecorder->unresolved.size(), 1u);
    ASSERT_TRUE(waitUntil([&] { return mRecorder->unresolved.size() == 2; }, 30s));
}

} // namespace
} // namespace farview
