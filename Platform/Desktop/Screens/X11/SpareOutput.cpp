#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <algorithm>

namespace farview
{
namespace
{

bool isOff(const RandrCrtc& crtc) { return crtc.mode == 0 && crtc.outputs.empty(); }

} // namespace

bool hasNoPlug(std::string_view outputName)
{
    return outputName.starts_with("VIRTUAL") || outputName.starts_with("Virtual-") ||
           outputName.starts_with("DUMMY");
}

std::optional<SpareOutput> spareOutput(const RandrLayout& layout)
{
    for (const auto& output : layout.outputs) {
        if (!hasNoPlug(output.name) || output.crtc != 0)
            continue;
        for (const auto id : output.crtcs) {
            const auto* crtc = withId(layout.crtcs, id);
            if (crtc && isOff(*crtc))
                return SpareOutput{output.id, id};
        }
    }
    return std::nullopt;
}

int rightEdgeOf(const std::vector<PixelRect>& areas)
{
    int edge = 0;
    for (const auto& area : areas)
        edge = std::max(edge, area.x + area.width);
    return edge;
}

bool isFree(RandrSize plane, const std::vector<PixelRect>& others, const RandrCrtc& wanted)
{
    const bool isOnPlane = wanted.x >= 0 && wanted.y >= 0 && wanted.width > 0 &&
                           wanted.height > 0 && wanted.width <= plane.width - wanted.x &&
                           wanted.height <= plane.height - wanted.y;
    return isOnPlane && std::none_of(others.begin(), others.end(), [&](const auto& area) {
               return overlap({0, area.x, area.y, area.width, area.height}, wanted);
           });
}

RandrSize united(RandrSize left, RandrSize right)
{
    return {std::max(left.width, right.width), std::max(left.height, right.height)};
}

} // namespace farview
