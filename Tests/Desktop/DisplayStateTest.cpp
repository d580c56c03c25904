#include "Platform/Desktop/Screens/Mutter/DisplayState.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

MonitorId named(const char* connector, const char* serial = "1")
{
    return {QLatin1String(connector), QStringLiteral("Maker"), QStringLiteral("Kind"),
            QLatin1String(serial)};
}

ConnectedMonitor monitor(const MonitorId& id, int width, int height)
{
    return {id,
            {{QStringLiteral("other"), 640, 480, 60, 1, {1}, false},
             {QStringLiteral("mode"), width, height, 60, 1, {1, 2}, true}},
            {}};
}

LogicalMonitor part(const MonitorId& id, int x, int y, double scale = 1, bool isPrimary = false,
                    unsigned transform = 0)
{
    return {x, y, scale, transform, isPrimary, {id}};
}

const MonitorId left = named("DP-1");
const MonitorId right = named("DP-2");
const MonitorId ours = named("Meta-0");

DisplayState twoMonitors()
{
    return {7,
            {monitor(left, 1920, 1080), monitor(right, 2560, 1440)},
            {part(left, 0, 0), part(right, 1920, 0, 1, true)},
            false};
}

TEST(DisplayStateTest, AMonitorWithACurrentModeIsOn)
{
    auto state = twoMonitors();
    EXPECT_EQ(state.monitor(right)->currentMode()->width, 2560);
    EXPECT_EQ(state.monitor(ours), nullptr);
    state.monitors[1].modes[1].isCurrent = false;
    EXPECT_EQ(state.monitor(right)->currentMode(), nullptr);
}

TEST(DisplayStateTest, ANewMonitorWasNotThereBeforeAndHasTheSize)
{
    const auto before = twoMonitors();
    auto now = before;
    EXPECT_EQ(newMonitor(before, now, 1920, 1080), nullptr);
    now.monitors.append(monitor(ours, 1024, 600));
    EXPECT_EQ(newMonitor(before, now, 800, 600), nullptr);
    ASSERT_NE(newMonitor(before, now, 1024, 600), nullptr);
    EXPECT_EQ(newMonitor(before, now, 1024, 600)->id, ours);
}

TEST(DisplayStateTest, ANewMonitorMayHaveTheConnectorOfOneThatWent)
{
    auto before = twoMonitors();
    before.monitors.append(monitor(ours, 1024, 600));
    auto now = twoMonitors();
    now.monitors.append(monitor(named("Meta-0", "2"), 1024, 600));
    EXPECT_NE(newMonitor(before, now, 1024, 600), nullptr);
}

TEST(DisplayStateTest, OursIsFurthestToTheRight)
{
    EXPECT_EQ(besideEverything({}), pixelPoint(0, 0));
    EXPECT_EQ(besideEverything(areasOf(twoMonitors(), twoMonitors().layout)), pixelPoint(4480, 0));
    const std::vector<PixelRect> areas = {pixelRect(1080, 500, 1920, 1080),
                                          pixelRect(0, 0, 1080, 1920)};
    EXPECT_EQ(besideEverything(areas), pixelPoint(3000, 500));
}

struct Arrangement {
    std::vector<PixelRect> areas;
    bool isPossible;
};

TEST(DisplayStateTest, MonitorsStandSideBySide)
{
    const auto first = pixelRect(0, 0, 1920, 1080);
    for (const auto& [areas, expected] : {
             Arrangement{{}, true},
             Arrangement{{first}, true},
             Arrangement{{first, pixelRect(1920, 0, 800, 600)}, true},
             Arrangement{{first, pixelRect(1920, 1079, 800, 600)}, true},
             Arrangement{{first, pixelRect(1920, 1080, 800, 600)}, false},
             Arrangement{{first, pixelRect(0, 1080, 800, 600)}, true},
             Arrangement{{first, pixelRect(1919, 0, 800, 600)}, false},
             Arrangement{{first, pixelRect(1921, 0, 800, 600)}, false},
             Arrangement{{first, pixelRect(-800, 0, 800, 600)}, false},
             Arrangement{{first, pixelRect(1920, -1, 800, 600)}, false},
             Arrangement{{first, pixelRect(1920, 0, 800, 600), pixelRect(2720, 0, 8, 6)}, true},
             Arrangement{{first, pixelRect(1920, 0, 800, 600), pixelRect(2721, 0, 8, 6)}, false},
         })
        EXPECT_EQ(isPossible(areas), expected) << areas.size();
}

TEST(DisplayStateTest, AreasAreInTheDesktopsUnits)
{
    auto state = twoMonitors();
    state.layout = {part(left, 0, 0, 1, false, 1), part(right, 1080, 0, 2, true)};
    EXPECT_EQ(areasOf(state, state.layout),
              (std::vector{pixelRect(1080, 0, 2560, 1440), pixelRect(0, 0, 1080, 1920)}));
    state.isScaled = true;
    EXPECT_EQ(areasOf(state, state.layout),
              (std::vector{pixelRect(1080, 0, 1280, 720), pixelRect(0, 0, 1080, 1920)}));
}

TEST(DisplayStateTest, WithoutOursTheOthersStayWhereTheyAre)
{
    auto layout = twoMonitors().layout;
    layout.append(part(ours, 4480, 0));
    EXPECT_EQ(without(layout, ours), twoMonitors().layout);
    EXPECT_EQ(shownBy(layout, ours)->x, 4480);
    EXPECT_EQ(shownBy(twoMonitors().layout, ours), nullptr);
    // It showed the same as another.
    layout = twoMonitors().layout;
    layout[0].monitors.append(ours);
    EXPECT_EQ(without(layout, ours), twoMonitors().layout);
}

TEST(DisplayStateTest, OnePartIsThePrimaryOne)
{
    const auto layout = twoMonitors().layout;
    EXPECT_EQ(withPrimary(layout), layout);
    EXPECT_TRUE(withPrimary({part(left, 0, 0), part(right, 9, 9)}).first().isPrimary);
    EXPECT_TRUE(withPrimary({}).isEmpty());
}

TEST(DisplayStateTest, TheOrderOfPartsDoesNotMatter)
{
    const DisplayLayout one = {part(left, 0, 0), part(right, 1920, 0)};
    EXPECT_TRUE(isSameLayout(one, {part(right, 1920, 0), part(left, 0, 0)}));
    EXPECT_FALSE(isSameLayout(one, {part(right, 1920, 0), part(left, 0, 5)}));
    EXPECT_FALSE(isSameLayout(one, {part(left, 0, 0)}));
}

TEST(DisplayStateTest, TheSameMonitorsMayBeElsewhere)
{
    const DisplayLayout one = {part(left, 0, 0), part(right, 1920, 0)};
    EXPECT_TRUE(haveSameMonitors(one, {part(right, 0, 0), part(left, 0, 1440, 2)}));
    EXPECT_FALSE(haveSameMonitors(one, {part(left, 0, 0)}));
    EXPECT_FALSE(haveSameMonitors({part(left, 0, 0)}, one));
}

TEST(DisplayStateTest, AScaleIsOneThatTheModeHas)
{
    const MonitorMode mode{QStringLiteral("mode"), 1, 1, 60, 1.5, {1, 1.5, 1.7518248}, true};
    EXPECT_EQ(possibleScale(mode, 1), 1);
    EXPECT_EQ(possibleScale(mode, 1.75), 1.7518248);
    EXPECT_EQ(possibleScale(mode, 2), 1.5);
}

TEST(DisplayStateTest, AnyOtherMessageIsNoState)
{
    EXPECT_EQ(displayStateIn(QDBusMessage()), std::nullopt);
    const auto call = QDBusMessage::createMethodCall(QStringLiteral("a.b"), QStringLiteral("/"),
                                                     QStringLiteral("a.b"), QStringLiteral("C"));
    EXPECT_EQ(displayStateIn(call.createReply(QStringLiteral("screens"))), std::nullopt);
    EXPECT_EQ(displayStateIn(call.createErrorReply(QDBusError::Failed, {})), std::nullopt);
}

} // namespace
} // namespace farview
