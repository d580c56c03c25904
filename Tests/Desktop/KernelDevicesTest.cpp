#include "Platform/Desktop/Screens/X11/KernelDevices.h"

#include <gtest/gtest.h>

#include <linux/input.h>

#include <fstream>
#include <sstream>

namespace farview
{
namespace
{

TouchPoint finger(int number, TouchPhase phase)
{
    TouchPoint point{};
    point.finger = number;
    point.phase = phase;
    point.pressure = 0.5;
    point.width = 30;
    point.height = 20;
    return point;
}

KernelEvents whereItIs(DevicePlace place)
{
    return {{EV_ABS, ABS_MT_POSITION_X, place.x},
            {EV_ABS, ABS_MT_POSITION_Y, place.y},
            {EV_ABS, ABS_MT_PRESSURE, 512},
            {EV_ABS, ABS_MT_TOUCH_MAJOR, 30},
            {EV_ABS, ABS_MT_TOUCH_MINOR, 20}};
}

KernelEvents joined(std::initializer_list<KernelEvents> parts)
{
    KernelEvents all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(TouchEvents, GiveEachFingerASlotAndANumberOfItsOwn)
{
    TouchEvents events;
    EXPECT_EQ(events.eventsFor(finger(0, TouchPhase::down), {1, 2}),
              joined({{{EV_ABS, ABS_MT_SLOT, 0}, {EV_ABS, ABS_MT_TRACKING_ID, 0}},
                      whereItIs({1, 2}),
                      {{EV_KEY, BTN_TOUCH, 1}}}));
    EXPECT_EQ(events.eventsFor(finger(3, TouchPhase::down), {5, 6}),
              joined({{{EV_ABS, ABS_MT_SLOT, 3}, {EV_ABS, ABS_MT_TRACKING_ID, 1}},
                      whereItIs({5, 6}),
                      {{EV_KEY, BTN_TOUCH, 1}}}));
    EXPECT_EQ(events.eventsFor(finger(0, TouchPhase::motion), {3, 4}),
              joined({{{EV_ABS, ABS_MT_SLOT, 0}}, whereItIs({3, 4}), {{EV_KEY, BTN_TOUCH, 1}}}));
}

TEST(TouchEvents, EndWithTheLastFinger)
{
    TouchEvents events;
    events.eventsFor(finger(0, TouchPhase::down), {});
    events.eventsFor(finger(1, TouchPhase::down), {});
    const auto over = [&](int number, TouchPhase phase) {
        return events.eventsFor(finger(number, phase), {});
    };
    EXPECT_EQ(over(0, TouchPhase::up), (KernelEvents{{EV_ABS, ABS_MT_SLOT, 0},
                                                     {EV_ABS, ABS_MT_TRACKING_ID, -1},
                                                     {EV_KEY, BTN_TOUCH, 1}}));
    EXPECT_EQ(over(1, TouchPhase::cancel), (KernelEvents{{EV_ABS, ABS_MT_SLOT, 1},
                                                         {EV_ABS, ABS_MT_TRACKING_ID, -1},
                                                         {EV_KEY, BTN_TOUCH, 0}}));
}

KernelEvents penAt(std::uint16_t tool, DevicePlace place, int pressure, int buttons)
{
    return {{EV_KEY, tool, 1},
            {EV_ABS, ABS_X, place.x},
            {EV_ABS, ABS_Y, place.y},
            {EV_ABS, ABS_PRESSURE, pressure},
            {EV_ABS, ABS_TILT_X, -30},
            {EV_ABS, ABS_TILT_Y, 90},
            {EV_KEY, BTN_STYLUS, buttons & 1},
            {EV_KEY, BTN_STYLUS2, buttons >> 1},
            {EV_KEY, BTN_TOUCH, pressure > 0}};
}

PenState penState(bool isDown, double pressure, bool isEraser = false, std::uint8_t buttons = 0)
{
    PenState state{};
    state.isDown = isDown;
    state.pressure = pressure;
    state.isEraser = isEraser;
    state.tiltX = -30;
    state.tiltY = 120;
    state.buttons = buttons;
    return state;
}

using Reports = std::vector<KernelEvents>;

TEST(PenEvents, SayWhereAndHowItIsHeld)
{
    PenEvents events;
    EXPECT_EQ(events.reportsFor(penState(false, 0.9), {1, 2}),
              Reports{penAt(BTN_TOOL_PEN, {1, 2}, 0, 0)});
    EXPECT_EQ(events.reportsFor(penState(true, 1, false, 2), {3, 4}),
              Reports{penAt(BTN_TOOL_PEN, {3, 4}, kMostKernelPressure, 2)});
    EXPECT_EQ(events.reportsFor(penState(true, 0), {3, 4}),
              Reports{penAt(BTN_TOOL_PEN, {3, 4}, kLeastPenPressure, 0)});
}

TEST(PenEvents, LetItHoverBeforeItPressesAndLiftItBeforeItTurnsOverOrGoes)
{
    const auto gone = [](std::uint16_t tool) {
        return KernelEvents{{EV_KEY, BTN_TOUCH, 0},
                            {EV_KEY, BTN_STYLUS, 0},
                            {EV_KEY, BTN_STYLUS2, 0},
                            {EV_ABS, ABS_PRESSURE, 0},
                            {EV_KEY, tool, 0}};
    };
    PenEvents events;
    EXPECT_EQ(events.reportsFor(penState(true, 1), {1, 2}),
              (Reports{penAt(BTN_TOOL_PEN, {1, 2}, 0, 0),
                       penAt(BTN_TOOL_PEN, {1, 2}, kMostKernelPressure, 0)}));
    EXPECT_EQ(events.reportsFor(penState(true, 1, true), {7, 8}),
              (Reports{gone(BTN_TOOL_PEN), penAt(BTN_TOOL_RUBBER, {7, 8}, 0, 0),
                       penAt(BTN_TOOL_RUBBER, {7, 8}, kMostKernelPressure, 0)}));
    PenState away{};
    away.isNear = false;
    EXPECT_EQ(events.reportsFor(away, {}), Reports{gone(BTN_TOOL_RUBBER)});
    EXPECT_EQ(events.reportsFor(away, {}), Reports{});
}

std::string kernelsDevices()
{
    std::ifstream file("/proc/bus/input/devices");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(KernelDevices, AreThereWhereTheKernelLetsUsMakeThem)
{
    if (!mayMakeKernelDevices()) {
        EXPECT_EQ(makeKernelDevices(), nullptr);
        return;
    }
    {
        const auto devices = makeKernelDevices();
        ASSERT_NE(devices, nullptr);
        EXPECT_NE(kernelsDevices().find(InputDevices::touchName), std::string::npos);
        EXPECT_NE(kernelsDevices().find(InputDevices::penName), std::string::npos);
    }
    EXPECT_EQ(kernelsDevices().find(InputDevices::touchName), std::string::npos);
}

} // namespace
} // namespace farview
