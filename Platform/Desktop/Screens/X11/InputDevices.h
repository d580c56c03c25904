#pragma once

#include "Platform/InputSink.h"

#include <functional>
#include <memory>

namespace farview
{

/// A place on the whole desktop, in parts of its width and height.
struct DevicePlace {
    int x = 0;
    int y = 0;

    /// How many parts there are: the last one is one less.
    static constexpr int parts = 65536;
    bool operator==(const DevicePlace&) const = default;
};

/// A touch screen and a pen of our own, which X servers take for real ones. They reach over the
/// whole desktop. One thread.
class InputDevices
{
public:
    /// What they are called. A server may make several devices of one pen, whose names begin so.
    static constexpr const char* touchName = "Farview Touch";
    static constexpr const char* penName = "Farview Pen";

    virtual ~InputDevices() = default;

    /// `point.place` does not count; its width and height are parts, too.
    virtual void touch(const TouchPoint& point, DevicePlace place) = 0;
    /// `state.place` does not count.
    virtual void pen(const PenState& state, DevicePlace place) = 0;
};

/// Null where there cannot be any.
using MakeInputDevices = std::function<std::unique_ptr<InputDevices>()>;

/// Whether this user may have devices of the kernel made.
bool mayMakeKernelDevices();
/// Devices of the kernel; they go with the object or the process.
/// Null when there cannot be any. Servers find them on their own, some time later.
std::unique_ptr<InputDevices> makeKernelDevices();

} // namespace farview
