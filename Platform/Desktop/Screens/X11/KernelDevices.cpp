#include "Platform/Desktop/Screens/X11/KernelDevices.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace farview
{
namespace
{

constexpr int mostFingers = 16;
/// Parts in a millimetre: some size has to be told for a pen.
constexpr int resolution = 200;

struct FreeDevice {
    void operator()(libevdev* device) const { libevdev_free(device); }
    void operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }
};
using Description = std::unique_ptr<libevdev, FreeDevice>;

struct Axis {
    unsigned int code;
    int least;
    int most;
    int resolution = 0;
};

Description description(const char* name, std::initializer_list<unsigned int> keys,
                        std::initializer_list<Axis> axes)
{
    Description device(libevdev_new());
    libevdev_set_name(device.get(), name);
    libevdev_enable_property(device.get(), INPUT_PROP_DIRECT);
    for (const auto key : keys)
        libevdev_enable_event_code(device.get(), EV_KEY, key, nullptr);
    for (const auto& axis : axes) {
        input_absinfo about{};
        about.minimum = axis.least;
        about.maximum = axis.most;
        about.resolution = axis.resolution;
        libevdev_enable_event_code(device.get(), EV_ABS, axis.code, &about);
    }
    return device;
}

constexpr int edge = DevicePlace::parts - 1;

Description touchScreen()
{
    return description(InputDevices::touchName, {BTN_TOUCH},
                       {{ABS_X, 0, edge, resolution},
                        {ABS_Y, 0, edge, resolution},
                        {ABS_MT_SLOT, 0, mostFingers - 1},
                        {ABS_MT_TRACKING_ID, 0, 0xFFFF},
                        {ABS_MT_POSITION_X, 0, edge, resolution},
                        {ABS_MT_POSITION_Y, 0, edge, resolution},
                        {ABS_MT_PRESSURE, 0, kMostKernelPressure},
                        {ABS_MT_TOUCH_MAJOR, 0, edge},
                        {ABS_MT_TOUCH_MINOR, 0, edge}});
}

Description penTablet()
{
    return description(InputDevices::penName,
                       {BTN_TOUCH, BTN_TOOL_PEN, BTN_TOOL_RUBBER, BTN_STYLUS, BTN_STYLUS2},
                       {{ABS_X, 0, edge, resolution},
                        {ABS_Y, 0, edge, resolution},
                        {ABS_PRESSURE, 0, kMostKernelPressure},
                        {ABS_TILT_X, -90, 90, 57},
                        {ABS_TILT_Y, -90, 90, 57}});
}

/// A device of the kernel; none when it does not let us make one.
class KernelDevice
{
public:
    explicit KernelDevice(const Description& description)
    {
        libevdev_uinput* made = nullptr;
        if (libevdev_uinput_create_from_device(description.get(), LIBEVDEV_UINPUT_OPEN_MANAGED,
                                               &made) == 0)
            mDevice.reset(made);
    }
    bool isThere() const { return mDevice != nullptr; }
    void tell(const KernelEvents& report) const
    {
        for (const auto& event : report)
            libevdev_uinput_write_event(mDevice.get(), event.type, event.code, event.value);
        libevdev_uinput_write_event(mDevice.get(), EV_SYN, SYN_REPORT, 0);
    }

private:
    std::unique_ptr<libevdev_uinput, FreeDevice> mDevice;
};

class KernelDevices final : public InputDevices
{
public:
    bool areThere() const { return mTouch.isThere() && mPen.isThere(); }
    void touch(const TouchPoint& point, DevicePlace place) override
    {
        mTouch.tell(mTouchEvents.eventsFor(point, place));
    }
    void pen(const PenState& state, DevicePlace place) override
    {
        for (const auto& report : mPenEvents.reportsFor(state, place))
            mPen.tell(report);
    }

private:
    KernelDevice mTouch{touchScreen()};
    KernelDevice mPen{penTablet()};
    TouchEvents mTouchEvents;
    PenEvents mPenEvents;
};

int inside(double value, int most) { return static_cast<int>(std::clamp<double>(value, 0, most)); }

int pressureOf(double part)
{
    return inside(std::round(part * kMostKernelPressure), kMostKernelPressure);
}

KernelEvents leaving(std::uint16_t tool)
{
    return {{EV_KEY, BTN_TOUCH, 0},
            {EV_KEY, BTN_STYLUS, 0},
            {EV_KEY, BTN_STYLUS2, 0},
            {EV_ABS, ABS_PRESSURE, 0},
            {EV_KEY, tool, 0}};
}

KernelEvents present(std::uint16_t tool, const PenState& state, DevicePlace place)
{
    return {{EV_KEY, tool, 1},
            {EV_ABS, ABS_X, place.x},
            {EV_ABS, ABS_Y, place.y},
            {EV_ABS, ABS_PRESSURE,
             state.isDown ? std::max(kLeastPenPressure, pressureOf(state.pressure)) : 0},
            {EV_ABS, ABS_TILT_X, std::clamp(state.tiltX, -90, 90)},
            {EV_ABS, ABS_TILT_Y, std::clamp(state.tiltY, -90, 90)},
            {EV_KEY, BTN_STYLUS, state.buttons & 1},
            {EV_KEY, BTN_STYLUS2, state.buttons >> 1 & 1},
            {EV_KEY, BTN_TOUCH, state.isDown ? 1 : 0}};
}

} // namespace

KernelEvents TouchEvents::eventsFor(const TouchPoint& point, DevicePlace place)
{
    KernelEvents events{{EV_ABS, ABS_MT_SLOT, point.finger}};
    const bool isOver = point.phase == TouchPhase::up || point.phase == TouchPhase::cancel;
    if (isOver) {
        mDown.erase(point.finger);
        events.push_back({EV_ABS, ABS_MT_TRACKING_ID, -1});
    } else {
        if (mDown.insert(point.finger).second)
            events.push_back({EV_ABS, ABS_MT_TRACKING_ID, mNext++ & 0xFFFF});
        events.insert(
            events.end(),
            {{EV_ABS, ABS_MT_POSITION_X, place.x},
             {EV_ABS, ABS_MT_POSITION_Y, place.y},
             {EV_ABS, ABS_MT_PRESSURE, std::max(1, pressureOf(point.pressure))},
             {EV_ABS, ABS_MT_TOUCH_MAJOR, inside(std::max(point.width, point.height), edge)},
             {EV_ABS, ABS_MT_TOUCH_MINOR, inside(std::min(point.width, point.height), edge)}});
    }
    events.push_back({EV_KEY, BTN_TOUCH, mDown.empty() ? 0 : 1});
    return events;
}

std::vector<KernelEvents> PenEvents::reportsFor(const PenState& state, DevicePlace place)
{
    const std::uint16_t tool = !state.isNear ? 0 : state.isEraser ? BTN_TOOL_RUBBER : BTN_TOOL_PEN;
    std::vector<KernelEvents> reports;
    if (mTool != 0 && mTool != tool)
        reports.push_back(leaving(mTool));
    if (tool != 0 && mTool != tool && state.isDown) {
        auto hovering = state;
        hovering.isDown = false;
        reports.push_back(present(tool, hovering, place));
    }
    if (tool != 0)
        reports.push_back(present(tool, state, place));
    mTool = tool;
    return reports;
}

bool mayMakeKernelDevices() { return ::access("/dev/uinput", R_OK | W_OK) == 0; }

std::unique_ptr<InputDevices> makeKernelDevices()
{
    auto devices = std::make_unique<KernelDevices>();
    return devices->areThere() ? std::move(devices) : nullptr;
}

} // namespace farview
