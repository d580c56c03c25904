#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <QDBusPendingCall>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace farview
{
namespace
{

constexpr const char* identifier = "com.quillon.TestApplication";

TEST(ApplicationBusName, IsTheBundleIdentifierWhereABusCanHoldIt)
{
    EXPECT_EQ(applicationBusName("com.quillon.menuextra.Farview"), "com.quillon.menuextra.Farview");
    EXPECT_EQ(applicationBusName("com.quillon.screen-capture_2"), "com.quillon.screen-capture_2");
}

TEST(ApplicationBusName, ReplacesWhatABusCannotHold)
{
    EXPECT_EQ(applicationBusName("com.quillon.Screen Capture"), "com.quillon.Screen_Capture");
    EXPECT_EQ(applicationBusName("com..7up."), "com._7up");
    EXPECT_EQ(applicationBusName("ScreenCapture"), "com.quillon.ScreenCapture");
    EXPECT_EQ(applicationBusName(""), "com.quillon.Application");
    EXPECT_LT(applicationBusName(std::string(1000, 'x')).size(), 200u);
}

/// One running program.
struct Program {
    FakeLog log;
    TestBus bus{log};
    SingleInstance instance{bus, identifier};
    int turns = 0;
    int replacements = 0;

    Program()
    {
        QObject::connect(&instance, &SingleInstance::replaced, &instance,
                         [this] { ++replacements; });
    }
    bool acquire()
    {
        std::optional<bool> result;
        instance.acquire([&](bool isTheOne) { result = isTheOne; });
        return waitUntil([&] { return result.has_value(); }) && *result;
    }
    void waitForTurn()
    {
        instance.whenItsTurnComes([this] { ++turns; });
    }
};

class SingleInstanceTest : public testing::Test
{
protected:
    /// What the running one answers; nothing when there is none.
    std::optional<bool> ask(SessionBus& bus)
    {
        auto call = QDBusMessage::createMethodCall(identifier, SingleInstance::objectPath,
                                                   SingleInstance::interfaceName, "isStaying");
        auto pending = bus.connection().asyncCall(call);
        waitUntil([&] { return pending.isFinished(); });
        const auto reply = pending.reply();
        if (reply.type() != QDBusMessage::ReplyMessage)
            return std::nullopt;
        return reply.arguments().at(0).toBool();
    }

    PrivateBus mPrivateBus;
    SessionBusScope mScope{mPrivateBus.address()};
};

TEST_F(SingleInstanceTest, OnlyTheFirstIsTheOne)
{
    Program first;
    Program second;
    EXPECT_TRUE(first.acquire());
    EXPECT_TRUE(first.acquire());
    EXPECT_FALSE(second.acquire());
}

TEST_F(SingleInstanceTest, TheNameIsFreeAsSoonAsItIsReleased)
{
    Program first;
    Program second;
    ASSERT_TRUE(first.acquire());
    first.instance.release();
    EXPECT_TRUE(waitUntil([&] { return second.acquire(); }));
    EXPECT_FALSE(first.acquire());
}

TEST_F(SingleInstanceTest, WhoGivesUpBeforeTheBusAnswersLeavesTheNameFree)
{
    Program first;
    Program second;
    first.instance.acquire([](bool) { ADD_FAILURE() << "told after the release"; });
    first.instance.release();
    EXPECT_TRUE(second.acquire());
    EXPECT_EQ(ask(first.bus), true);
}

TEST_F(SingleInstanceTest, TheNextWaitsForItsTurnUntilTheFormerHasEnded)
{
    auto first = std::make_unique<Program>();
    Program second;
    ASSERT_TRUE(first->acquire());
    first->waitForTurn();
    EXPECT_EQ(first->turns, 0);
    ASSERT_TRUE(waitUntil([&] { return first->turns == 1; }));
    first->instance.release();
    ASSERT_TRUE(waitUntil([&] { return second.acquire(); }));
    second.waitForTurn();
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(second.turns, 0);
    first.reset();
    EXPECT_TRUE(waitUntil([&] { return second.turns == 1; }));
}

TEST_F(SingleInstanceTest, AFormerInstanceThatHangsDoesNotStopTheNextForever)
{
    Program first;
    Program second;
    first.waitForTurn();
    ASSERT_TRUE(waitUntil([&] { return first.turns == 1; }));
    second.waitForTurn();
    EXPECT_TRUE(waitUntil([&] { return second.turns == 1; }, std::chrono::seconds(8)));
}

TEST_F(SingleInstanceTest, TellsOthersWhetherItStays)
{
    Program first;
    Program other;
    EXPECT_EQ(ask(other.bus), std::nullopt);
    ASSERT_TRUE(first.acquire());
    EXPECT_EQ(ask(other.bus), true);
    first.instance.release();
    EXPECT_EQ(ask(other.bus), std::nullopt);
}

TEST_F(SingleInstanceTest, OwnsItsNameAgainAfterARestartOfTheBus)
{
    Program first;
    ASSERT_TRUE(first.acquire());
    mPrivateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return !first.bus.isConnected(); }));
    mPrivateBus.start();
    ASSERT_TRUE(waitUntil([&] { return first.bus.isConnected(); }));
    Program second;
    EXPECT_FALSE(second.acquire());
    EXPECT_EQ(ask(second.bus), true);
    EXPECT_EQ(first.replacements, 0);
}

TEST_F(SingleInstanceTest, HearsThatAnotherTookItsPlaceWhileTheBusWasAway)
{
    Program first;
    ASSERT_TRUE(first.acquire());
    mPrivateBus.stop();
    ASSERT_TRUE(waitUntil([&] { return !first.bus.isConnected(); }));
    mPrivateBus.start();
    Program second;
    ASSERT_TRUE(second.acquire());
    EXPECT_TRUE(waitUntil([&] { return first.replacements == 1; }));
}

TEST(SingleInstance, WithoutABusEveryoneIsTheOne)
{
    Program first;
    Program second;
    EXPECT_TRUE(first.acquire());
    EXPECT_TRUE(second.acquire());
    second.waitForTurn();
    EXPECT_EQ(second.turns, 0);
    EXPECT_TRUE(waitUntil([&] { return second.turns == 1; }));
}

} // namespace
} // namespace farview
