#include "Platform/Desktop/Screens/X11/RandrLayout.h"

#include <algorithm>

namespace farview
{
namespace
{

bool isOn(const RandrCrtc& crtc) { return crtc.mode != 0 && !crtc.outputs.empty(); }

/// What the output shows; null when it shows nothing.
RandrCrtc* shownBy(RandrLayout& layout, RandrNumber output)
{
    const RandrOutput* found = withId(layout.outputs, output);
    RandrCrtc* crtc = found && found->crtc != 0 ? withId(layout.crtcs, found->crtc) : nullptr;
    return crtc && isOn(*crtc) ? crtc : nullptr;
}

/// One that is off and that the output could show; null when there is none.
RandrCrtc* freeCrtcFor(RandrLayout& layout, const RandrOutput& output)
{
    for (const auto id : output.crtcs) {
        RandrCrtc* crtc = withId(layout.crtcs, id);
        if (crtc && !isOn(*crtc))
            return crtc;
    }
    return nullptr;
}

/// A crtc that the output alone shows, for now showing what it shows already; null when there is
/// none left for it.
RandrCrtc* ownCrtcOf(RandrLayout& layout, RandrNumber id)
{
    RandrOutput& output = *withId(layout.outputs, id);
    RandrCrtc* shared = shownBy(layout, id);
    if (!shared || shared->outputs.size() == 1)
        return shared;
    RandrCrtc* own = freeCrtcFor(layout, output);
    if (!own)
        return nullptr;
    std::erase(shared->outputs, id);
    const auto number = own->id;
    *own = *shared;
    own->id = number;
    own->outputs = {id};
    output.crtc = number;
    return own;
}

int rightEdgeWithout(const RandrLayout& layout, RandrNumber crtc)
{
    int edge = 0;
    for (const auto& each : layout.crtcs) {
        if (isOn(each) && each.id != crtc)
            edge = std::max(edge, each.x + each.width);
    }
    return edge;
}

/// The mode of that size, best the very same one; 0 when the output has none.
RandrNumber modeLike(RandrLayout& layout, const RandrOutput& output, RandrNumber wanted)
{
    const RandrMode* like = withId(layout.modes, wanted);
    RandrNumber found = 0;
    for (const auto id : output.modes) {
        const RandrMode* mode = withId(layout.modes, id);
        if (id == wanted)
            return id;
        if (found == 0 && mode && like && mode->width == like->width &&
            mode->height == like->height)
            found = id;
    }
    return found;
}

} // namespace

const RandrCrtc* shownBy(const RandrLayout& layout, RandrNumber output)
{
    return shownBy(const_cast<RandrLayout&>(layout), output);
}

PixelRect areaOf(const RandrCrtc& crtc)
{
    return pixelRect(crtc.x, crtc.y, crtc.width, crtc.height);
}

RandrSize extentOf(const RandrCrtc& crtc) { return {crtc.x + crtc.width, crtc.y + crtc.height}; }

bool overlap(const RandrCrtc& left, const RandrCrtc& right)
{
    return left.x < right.x + right.width && right.x < left.x + left.width &&
           left.y < right.y + right.height && right.y < left.y + left.height;
}

std::vector<RandrNumber> onlineOutputs(const RandrLayout& layout)
{
    std::vector<RandrNumber> found;
    for (const auto& output : layout.outputs) {
        if (shownBy(layout, output.id))
            found.push_back(output.id);
    }
    std::stable_partition(found.begin(), found.end(),
                          [&](RandrNumber id) { return id == layout.primary; });
    return found;
}

std::vector<RandrNumber> outputsShowingTheSame(const RandrLayout& layout, RandrNumber output)
{
    const RandrCrtc* shown = shownBy(layout, output);
    if (!shown)
        return {};
    auto found = onlineOutputs(layout);
    std::erase_if(found, [&](RandrNumber id) { return !overlap(*shown, *shownBy(layout, id)); });
    std::stable_partition(found.begin(), found.end(), [&](RandrNumber id) { return id == output; });
    return found;
}

RandrSize neededSize(const RandrLayout& layout)
{
    RandrSize size;
    for (const auto& crtc : layout.crtcs) {
        if (!isOn(crtc))
            continue;
        size.width = std::max(size.width, crtc.x + crtc.width);
        size.height = std::max(size.height, crtc.y + crtc.height);
    }
    return size;
}

std::optional<RandrLayout> withMirror(RandrLayout layout, RandrNumber output, RandrNumber master)
{
    const RandrCrtc* original = shownBy(layout, master);
    const RandrCrtc* current = shownBy(layout, output);
    if (!original || !current)
        return std::nullopt;
    if (original == current)
        return layout;
    const auto mode = modeLike(layout, *withId(layout.outputs, output), original->mode);
    RandrCrtc* own = mode != 0 ? ownCrtcOf(layout, output) : nullptr;
    if (!own)
        return std::nullopt;
    const auto number = own->id;
    *own = *original;
    own->id = number;
    own->mode = mode;
    own->outputs = {output};
    return layout;
}

std::optional<RandrLayout> withoutMirror(RandrLayout layout, RandrNumber output)
{
    const auto same = outputsShowingTheSame(layout, output);
    if (same.empty())
        return std::nullopt;
    const int y = shownBy(layout, output)->y;
    for (const auto other : same) {
        if (other == output)
            continue;
        RandrCrtc* own = ownCrtcOf(layout, other);
        if (!own)
            return std::nullopt;
        own->x = rightEdgeWithout(layout, own->id);
        own->y = y;
    }
    return layout;
}

} // namespace farview
