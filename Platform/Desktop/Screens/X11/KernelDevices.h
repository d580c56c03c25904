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
/// Those that belong together.
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

/// What a pen tells: the two ends of it are two tools. One goes before the other comes, and each
/// hovers before it is pressed down: the pressure with which a tool comes is taken for that of a
/// worn one at rest.
class PenEvents
{
public:
    std::vector<KernelEvents> reportsFor(const PenState& state, DevicePlace place);

private:
    std::uint16_t mTool = 0; ///< that is near; 0: none
};

inline constexpr int kMostKernelPressure = 1023;
/// Of a pen that is down: less than a twentieth of the most is taken for hovering.
inline constexpr int kLeastPenPressure = 64;

} // namespace farview
