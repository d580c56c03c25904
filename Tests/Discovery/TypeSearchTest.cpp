#include "Platform/Desktop/Discovery/TypeSearch.h"
#include "Platform/Desktop/Discovery/DesktopNetService.h"
#include "Tests/Discovery/ScriptedSource.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Sighting wired4{2, Sighting::IPv4};
constexpr Sighting wired6{2, Sighting::IPv6};
constexpr Sighting wireless4{3, Sighting::IPv4};

struct Observer : TypeSearchObserver {
    std::vector<std::string> heard;

    void appeared(const std::shared_ptr<KnownService>& service) override
    {
        heard.push_back("+" + service->printableName());
    }
    void disappeared(const std::shared_ptr<KnownService>& service) override
    {
        heard.push_back("-" + service->printableName());
    }
};

struct Delegate : NetServiceDelegate {
    int resolved = 0;
    std::vector<std::string> errors;
    std::vector<Data> records;

    void netServiceDidResolveAddress(const std::shared_ptr<NetService>&) override { ++resolved; }
    void didNotResolve(const std::shared_ptr<NetService>&, const std::string& error) override
    {
        errors.push_back(error);
    }
    void didUpdateTXTRecordData(const std::shared_ptr<NetService>&, const Data& data) override
    {
        records.push_back(data);
    }
};

class TypeSearches : public testing::Test
{
protected:
    void SetUp() override
    {
        mSearch.addObserver(mObserver);
        mSearch.useSource(mSource);
    }
    void seen(const std::string& name, Sighting sighting)
    {
        mSource->searchEvents.seen(name, sighting);
    }
    void gone(const std::string& name, Sighting sighting)
    {
        mSource->searchEvents.gone(name, sighting);
    }
    std::shared_ptr<DesktopNetService> handOut()
    {
        auto service = DesktopNetService::make(mSearch.services().front());
        service->setDelegate(mDelegate);
        return service;
    }
    static ResolvedSighting at(const std::string& address)
    {
        return {"desk.local", Data::fromText("\x01x"), {address, 6001, 2}};
    }

    std::shared_ptr<ScriptedSource> mSource = std::make_shared<ScriptedSource>();
    std::shared_ptr<Observer> mObserver = std::make_shared<Observer>();
    std::shared_ptr<Delegate> mDelegate = std::make_shared<Delegate>();
    TypeSearch mSearch{"_qlexvscreen._udp", "local"};
};

TEST_F(TypeSearches, AServiceIsFoundAtItsFirstSightingAndRemovedAtItsLast)
{
    seen("a", wired4);
    seen("a", wired6);
    seen("a", wireless4);
    gone("a", wired4);
    gone("a", wired6);
    EXPECT_THAT(mObserver->heard, ElementsAre("+a"));
    gone("a", wireless4);
    EXPECT_THAT(mObserver->heard, ElementsAre("+a", "-a"));
    gone("a", wireless4);
    EXPECT_EQ(mObserver->heard.size(), 2u);
}

TEST_F(TypeSearches, EverySightingIsResolvedAtOnceWithItsOwnKindOfAddress)
{
    seen("a", wired6);
    seen("a", wired4);
    ASSERT_EQ(mSource->resolves.size(), 2u);
    EXPECT_EQ(mSource->resolves.front().addressProtocol, Sighting::IPv6);
    EXPECT_EQ(mSource->resolves.back().addressProtocol, Sighting::IPv4);
    mSource->answer(at("fe80::1"));
    mSource->answer(at("10.0.0.1"));
    const auto& endpoints = mSearch.services().front()->endpoints();
    ASSERT_EQ(endpoints.size(), 2u);
    EXPECT_EQ(endpoints.front().address, "10.0.0.1");
    gone("a", wired4);
    EXPECT_EQ(mSearch.services().front()->endpoints().size(), 1u);
}

TEST_F(TypeSearches, AResolveRightAfterTheFirstNeedsNoQuestion)
{
    seen("a", wired4);
    mSource->answer(at("10.0.0.1"));
    const auto service = handOut();
    service->resolveWithTimeout(Duration(5));
    EXPECT_EQ(mDelegate->resolved, 0);
    ASSERT_TRUE(waitUntil([&] { return mDelegate->resolved == 1; }));
    EXPECT_EQ(mSource->resolveCount, 1);
    EXPECT_EQ(service->hostName(), "desk.local");
}

TEST_F(TypeSearches, AFailureIsAskedAgainUntilTheTimeOut)
{
    seen("a", wired4);
    const auto service = handOut();
    service->resolveWithTimeout(Duration(5));
    mSource->answer(ResolveFailure::noAnswer);
    EXPECT_THAT(mDelegate->errors, IsEmpty());
    ASSERT_TRUE(waitUntil([&] { return mSource->resolves.size() == 1; }));
    EXPECT_EQ(mSource->resolves.front().addressProtocol, Sighting::anyProtocol);
    mSource->answer(at("10.0.0.1"));
    EXPECT_EQ(mDelegate->resolved, 1);
}

TEST_F(TypeSearches, WhatCannotBeResolvedFailsAtOnce)
{
    seen("a", wired4);
    const auto service = handOut();
    service->resolveWithTimeout(Duration(5));
    mSource->answer(ResolveFailure::impossible);
    EXPECT_EQ(mDelegate->errors.size(), 1u);
}

TEST_F(TypeSearches, ANewResolveReplacesTheOneUnderWay)
{
    seen("a", wired4);
    const auto service = handOut();
    service->resolveWithTimeout(Duration(0.05));
    service->resolveWithTimeout(Duration(60));
    runLoopFor(std::chrono::milliseconds(150));
    EXPECT_THAT(mDelegate->errors, IsEmpty());
    mSource->answer(at("10.0.0.1"));
    EXPECT_EQ(mDelegate->resolved, 1);
}

TEST_F(TypeSearches, ALostSourceTakesEverythingWithIt)
{
    seen("a", wired4);
    seen("b", wired4);
    const auto service = handOut();
    service->resolveWithTimeout(Duration(60));
    mSource->searchEvents.lost();
    EXPECT_THAT(mObserver->heard, ElementsAre("+a", "+b", "-a", "-b"));
    EXPECT_THAT(mSource->resolves, IsEmpty());
    EXPECT_EQ(mDelegate->errors.size(), 1u);
    seen("a", wired4);
    EXPECT_EQ(mObserver->heard.back(), "+a");
}

TEST_F(TypeSearches, BytesThatAreNotTextAreReplacedButKeptForTheNetwork)
{
    seen("bad \xff", wired4);
    EXPECT_EQ(mSearch.services().front()->printableName(), "bad \xef\xbf\xbd");
    EXPECT_EQ(mSource->resolves.front().service.name, "bad \xff");
    seen("\xef\xbb\xbfmark", wired4);
    EXPECT_EQ(mSearch.services().back()->printableName(), "\xef\xbb\xbfmark");
}

TEST_F(TypeSearches, ARecordIsReportedWhenItDiffersFromTheKnownOne)
{
    seen("a", wired4);
    mSource->answer(at("10.0.0.1"));
    const auto service = handOut();
    service->startMonitoring();
    const auto known = Data::fromText("\x01x");
    const auto changed = Data::fromText("\x01y");
    mSource->recordEvents.seen(wired4, known);
    mSource->recordEvents.seen(wired6, known);
    EXPECT_THAT(mDelegate->records, IsEmpty());
    mSource->recordEvents.seen(wired4, changed);
    mSource->recordEvents.seen(wired6, changed);
    mSource->recordEvents.gone(wired4, known);
    mSource->recordEvents.gone(wired6, known);
    EXPECT_THAT(mDelegate->records, ElementsAre(changed));
    service->stopMonitoring();
    EXPECT_EQ(mSource->endedWatches, 1);
}

TEST_F(TypeSearches, ARecordThatIsTakenBackWithinASecondIsReportedToo)
{
    seen("a", wired4);
    mSource->answer(at("10.0.0.1"));
    const auto service = handOut();
    service->startMonitoring();
    const auto known = Data::fromText("\x01x");
    const auto brief = Data::fromText("\x01y");
    mSource->recordEvents.seen(wired4, known);
    mSource->recordEvents.seen(wired4, brief);
    mSource->recordEvents.gone(wired4, brief);
    EXPECT_THAT(mDelegate->records, ElementsAre(brief, known));
}

} // namespace
} // namespace farview
