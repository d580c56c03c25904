#pragma once

#include "Platform/Desktop/Screens/X11/InputDevices.h"

#include <cstdint>
#include <set>
#include <vector>

namespace farview
{

/// One line of what the kernel tells of a device, as in linux/input.h.
struct KernelEvent {
    std::uint16_t type = 0;
    std::uint16_t code = 0;
    std::int32_t value = 0;

    bool operator==(const KernelEvent&) const = default;
};
using KernelEvents = std::vector<KernelEvent>;

/// What a touch screen tells of its fingers.
class TouchEvents
{
public:
    KernelEvents eventsFor(const TouchPoint& point, DevicePlace place);

private:
    std::set<int> mDown;
    int mNext = 0; ///< each finger that comes down gets a number of its own
};

/// What a pen tells: the two ends of it are two tools.
class PenEvents
{
public:
    KernelEvents eventsFor(const PenState& state, DevicePlace place);

private:
    std::uint16_t mTool = 0; ///< that is near; 0: none
};

/// The largest pressure, and the largest contact is as large as the device.
inline constexpr int kMostKernelPressure = 1023;

} // namespace farview
