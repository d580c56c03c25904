#include "Platform/Desktop/Screens/X11/SpareOutput.h"

#include <algorithm>

namespace farview
{
namespace
{

bool isOff(const RandrCrtc& crtc) { return crtc.mode == 0 && crtc.outputs.empty(); }

bool isOfOthers(const RandrCrtc& crtc, RandrNumber output)
{
    return crtc.mode != 0 && crtc.outputs != std::vector{output};
}

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

int rightEdgeWithout(const RandrLayout& layout, RandrNumber output)
{
    int edge = 0;
    for (const auto& crtc : layout.crtcs) {
        if (isOfOthers(crtc, output))
            edge = std::max(edge, crtc.x + crtc.width);
    }
    return edge;
}

bool isFree(const RandrLayout& layout, RandrNumber output, const RandrCrtc& wanted)
{
    const bool isOnPlane = wanted.x >= 0 && wanted.y >= 0 && wanted.width > 0 &&
                           wanted.height > 0 &&
                           wanted.width <= layout.largestSize.width - wanted.x &&
                           wanted.height <= layout.largestSize.height - wanted.y;
    return isOnPlane &&
           std::none_of(layout.crtcs.begin(), layout.crtcs.end(), [&](const auto& crtc) {
               return isOfOthers(crtc, output) && overlap(crtc, wanted);
           });
}

RandrSize united(RandrSize left, RandrSize right)
{
    return {std::max(left.width, right.width), std::max(left.height, right.height)};
}

} // namespace farview
