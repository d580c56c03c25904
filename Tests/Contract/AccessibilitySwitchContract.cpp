#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Rights/DesktopAccessibilitySwitch.h"
#include "Platform/Fake/FakeAccessibilitySwitch.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace farview
{
namespace
{

using Lifetime = AccessibilitySwitch::Lifetime;
using Problem = AccessibilitySwitch::Problem;
using State = AccessibilitySwitch::State;

struct FakeBench {
    void offer(bool isOn) { accessibility.setState({isOn, Problem::none, Lifetime::session}); }
    void offerNothing()
    {
        accessibility.setState({std::nullopt, Problem::noService, Lifetime::session});
        accessibility.setProblem(Problem::noService);
    }
    void changeElsewhere(bool isOn) { offer(isOn); }
    template <typename Condition> bool until(Condition condition)
    {
        accessibility.deliver();
        return condition();
    }

    FakeAccessibilitySwitch accessibility;
};

/// A bus with the service in another process, on a desktop without a lasting setting.
struct DesktopBench {
    void offer(bool isOn)
    {
        service.reset();
        waitUntil([this] { return !isOffered(); });
        service.emplace(
            std::vector<std::string>{FARVIEW_TEST_PEER, "accessibility", isOn ? "on" : "off"});
        waitUntil([this] { return isOffered(); });
    }
    void offerNothing() {}
    void changeElsewhere(bool isOn)
    {
        DesktopAccessibilitySwitch another(bus);
        bool isDone = false;
        another.set(isOn, [&](Problem) { isDone = true; });
        waitUntil([&] { return isDone; });
    }
    template <typename Condition> bool until(Condition condition) { return waitUntil(condition); }

    PrivateBus privateBus;
    TemporaryFolder tools; // empty: there is no settings tool
    ScopedEnvironment path{"PATH", tools.path().c_str()};
    SessionBusScope scope{privateBus.address()};
    FakeLog log;
    TestBus bus{log};
    std::optional<ChildProcess> service;
    DesktopAccessibilitySwitch accessibility{bus};

private:
    bool isOffered() { return bus.hasOwner("org.a11y.Bus"); }
};

template <typename Bench> class AccessibilitySwitchContract : public testing::Test
{
protected:
    void observe()
    {
        subscription = accessibility().observe([this](const State& state) { told = state; });
    }
    AccessibilitySwitch& accessibility() { return bench.accessibility; }

    Bench bench;
    std::optional<State> told;
    Subscription subscription;
};

using Benches = testing::Types<FakeBench, DesktopBench>;
TYPED_TEST_SUITE(AccessibilitySwitchContract, Benches);

TYPED_TEST(AccessibilitySwitchContract, TellsWhatHoldsOnALaterTurn)
{
    for (const bool isOn : {true, false}) {
        this->bench.offer(isOn);
        this->told.reset();
        this->observe();
        EXPECT_FALSE(this->told);
        const State expected{isOn, Problem::none, Lifetime::session};
        EXPECT_TRUE(this->bench.until([&] { return this->told == expected; }));
    }
}

TYPED_TEST(AccessibilitySwitchContract, IsSetAndTellsObserverAndCaller)
{
    this->bench.offer(false);
    this->observe();
    ASSERT_TRUE(this->bench.until([&] { return this->told && this->told->isOn == false; }));
    std::optional<Problem> result;
    std::optional<bool> toldBefore;
    this->accessibility().set(true, [&](Problem problem) {
        result = problem;
        toldBefore = this->told->isOn;
    });
    EXPECT_FALSE(result);
    EXPECT_TRUE(this->bench.until([&] { return result.has_value(); }));
    EXPECT_EQ(result, Problem::none);
    EXPECT_EQ(toldBefore, true);
}

TYPED_TEST(AccessibilitySwitchContract, FollowsWhatOthersDo)
{
    this->bench.offer(false);
    this->observe();
    ASSERT_TRUE(this->bench.until([&] { return this->told && this->told->isOn == false; }));
    this->bench.changeElsewhere(true);
    EXPECT_TRUE(this->bench.until([&] { return this->told->isOn == true; }));
}

TYPED_TEST(AccessibilitySwitchContract, SaysThatNobodyOffersIt)
{
    this->bench.offerNothing();
    this->observe();
    EXPECT_TRUE(
        this->bench.until([&] { return this->told && this->told->problem == Problem::noService; }));
    EXPECT_EQ(this->told->isOn, std::nullopt);
    std::optional<Problem> result;
    this->accessibility().set(true, [&](Problem problem) { result = problem; });
    EXPECT_TRUE(this->bench.until([&] { return result.has_value(); }));
    EXPECT_EQ(result, Problem::noService);
}

TYPED_TEST(AccessibilitySwitchContract, AnEndedObserverHearsNothing)
{
    this->bench.offer(false);
    this->observe();
    ASSERT_TRUE(this->bench.until([&] { return this->told && this->told->isOn == false; }));
    this->subscription.end();
    this->bench.changeElsewhere(true);
    std::optional<Problem> result;
    this->accessibility().set(true, [&](Problem problem) { result = problem; });
    EXPECT_TRUE(this->bench.until([&] { return result.has_value(); }));
    EXPECT_EQ(this->told->isOn, false);
}

} // namespace
} // namespace farview
