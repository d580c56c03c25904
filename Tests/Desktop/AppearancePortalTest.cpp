#include "Platform/Desktop/Looks/AppearancePortal.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/ScriptedPortal.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace farview
{
namespace
{

constexpr auto shared = "org.freedesktop.appearance";
constexpr auto gnomes = "org.gnome.desktop.interface";

class AppearancePortalTest : public testing::Test
{
protected:
    ~AppearancePortalTest() override
    {
        asking.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("appearance-test"));
    }
    void ask()
    {
        const auto bus = QDBusConnection::connectToBus(QString::fromStdString(privateBus.address()),
                                                       QStringLiteral("appearance-test"));
        ASSERT_TRUE(bus.isConnected());
        asking.emplace(bus, [this](const AppearancePreferences& each) { told.push_back(each); });
    }
    /// Waits until that many questions were answered.
    bool answered(int questions)
    {
        return waitUntil([&] { return portal.questions() >= questions; }) && settled();
    }
    /// An answer that is under way comes in before one to a later question.
    bool settled()
    {
        const int before = portal.questions();
        portal.change(shared, "accent-color", QVariant(0u));
        return waitUntil([&] { return portal.questions() > before; });
    }

    PrivateBus privateBus;
    ScriptedPortal portal{privateBus.address()};
    std::vector<AppearancePreferences> told;
    std::optional<AppearancePortal> asking;
};

TEST_F(AppearancePortalTest, TellsWhatTheUserPrefers)
{
    portal.set(shared, "color-scheme", 1u);
    ask();
    ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
    EXPECT_EQ(told.back(), (AppearancePreferences{ColorPreference::dark, false, true}));
}

TEST_F(AppearancePortalTest, FollowsEveryChangeWhileItRuns)
{
    ask();
    const auto comes = [&](const AppearancePreferences& expected) {
        return waitUntil([&] { return !told.empty() && told.back() == expected; });
    };
    portal.change(shared, "color-scheme", 1u);
    EXPECT_TRUE(comes({ColorPreference::dark, false, true}));
    portal.change(shared, "color-scheme", 2u);
    EXPECT_TRUE(comes({ColorPreference::light, false, true}));
    portal.change(shared, "reduced-motion", 1u);
    EXPECT_TRUE(comes({ColorPreference::light, true, true}));
    portal.change(gnomes, "enable-animations", false);
    EXPECT_TRUE(comes({ColorPreference::light, true, false}));
    portal.change(shared, "color-scheme", 0u);
    EXPECT_TRUE(comes({ColorPreference::none, true, false}));
}

TEST_F(AppearancePortalTest, SaysNothingWhereNothingIsPreferred)
{
    ask();
    ASSERT_TRUE(answered(1));
    EXPECT_TRUE(told.empty());
}

TEST_F(AppearancePortalTest, ValuesOfTheWrongKindCountAsNotThere)
{
    portal.set(shared, "color-scheme", QStringLiteral("prefer-dark"));
    portal.set(shared, "reduced-motion", true);
    portal.set(gnomes, "enable-animations", QStringLiteral("false"));
    ask();
    ASSERT_TRUE(answered(1));
    portal.change(shared, "color-scheme", 7u);
    ASSERT_TRUE(answered(3));
    EXPECT_TRUE(told.empty());
}

TEST_F(AppearancePortalTest, AnAnswerThatIsNoneIsSurvived)
{
    portal.setNonsense();
    ask();
    ASSERT_TRUE(answered(1));
    EXPECT_TRUE(told.empty());
}

TEST_F(AppearancePortalTest, AnAnswerThatIsHereIsToldWithoutATurnOfTheLoop)
{
    portal.set(shared, "color-scheme", 1u);
    portal.hold();
    ask();
    asking->tellWhatIsHere();
    EXPECT_TRUE(told.empty()) << "the portal has not answered";
    ASSERT_TRUE(waitUntil([&] { return portal.questions() == 1; }));
    portal.release();
    // The bus brings the answer on a thread of its own; this one only looks.
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (told.empty() && std::chrono::steady_clock::now() < limit)
        asking->tellWhatIsHere();
    ASSERT_EQ(told.size(), 1u);
    ASSERT_TRUE(settled());
    EXPECT_EQ(told.size(), 1u) << "and only once";
}

TEST_F(AppearancePortalTest, ManyChangesAtOnceLeadToFewQuestions)
{
    portal.hold();
    ask();
    ASSERT_TRUE(waitUntil([&] { return portal.questions() == 1; }));
    for (int i = 0; i < 100; ++i)
        portal.change(shared, "color-scheme", QVariant(uint(i % 3)));
    portal.change(shared, "color-scheme", 1u);
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(portal.questions(), 1) << "one at a time";
    portal.release();
    EXPECT_TRUE(
        waitUntil([&] { return !told.empty() && told.back().colors == ColorPreference::dark; }));
}

TEST_F(AppearancePortalTest, WithoutABusNothingHappens)
{
    AppearancePortal alone(QDBusConnection(QStringLiteral("no-such-connection")),
                           [this](const AppearancePreferences& each) { told.push_back(each); });
    alone.tellWhatIsHere();
    EXPECT_TRUE(told.empty());
}

TEST(AppearanceWithoutPortal, IsNeverTold)
{
    PrivateBus privateBus;
    const auto bus = QDBusConnection::connectToBus(QString::fromStdString(privateBus.address()),
                                                   QStringLiteral("no-portal"));
    bool wasTold = false;
    {
        AppearancePortal asking(bus, [&](const AppearancePreferences&) { wasTold = true; });
        // The bus itself answers that there is nobody.
        runLoopFor(std::chrono::milliseconds(100));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("no-portal"));
    EXPECT_FALSE(wasTold);
}

} // namespace
} // namespace farview
