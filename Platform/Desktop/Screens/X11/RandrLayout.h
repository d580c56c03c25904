#pragma once

#include "Platform/Types/PixelRect.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

using RandrNumber = std::uint32_t;

struct RandrMode {
    RandrNumber id = 0;
    int width = 0;
    int height = 0;
    std::string name = {};
};

/// A part of the screen, and the outputs that show it. Without a mode it is off.
struct RandrCrtc {
    RandrNumber id = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    RandrNumber mode = 0;
    std::uint16_t rotation = 1;
    std::vector<RandrNumber> outputs = {};

    bool operator==(const RandrCrtc&) const = default;
};

struct RandrOutput {
    RandrNumber id = 0;
    /// The one that it shows; 0 for none.
    RandrNumber crtc = 0;
    /// What it could show, and how.
    std::vector<RandrNumber> crtcs;
    std::vector<RandrNumber> modes;
    std::string name = {};
};

struct RandrSize {
    int width = 0;
    int height = 0;

    bool operator==(const RandrSize&) const = default;
};

/// An X server's outputs as they are arranged, or as they should be.
struct RandrLayout {
    RandrSize size;
    RandrSize largestSize;
    RandrNumber primary = 0;
    std::uint32_t timestamp = 0;
    std::vector<RandrCrtc> crtcs;
    std::vector<RandrOutput> outputs;
    std::vector<RandrMode> modes;
};

/// The mode, crtc or output of that number; null when there is none.
template <typename Item> Item* withId(std::vector<Item>& items, RandrNumber id)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [id](const Item& item) { return item.id == id; });
    return found == items.end() ? nullptr : &*found;
}
template <typename Item> const Item* withId(const std::vector<Item>& items, RandrNumber id)
{
    return withId(const_cast<std::vector<Item>&>(items), id);
}

/// What the output shows; null when it shows nothing.
const RandrCrtc* shownBy(const RandrLayout& layout, RandrNumber output);
PixelRect areaOf(const RandrCrtc& crtc);
/// What the screen must have at least to hold it.
RandrSize extentOf(const RandrCrtc& crtc);
bool overlap(const RandrCrtc& left, const RandrCrtc& right);

/// The outputs that show something, the primary one first.
std::vector<RandrNumber> onlineOutputs(const RandrLayout& layout);
/// The outputs that show any of what this one shows, itself first; none when it shows nothing.
std::vector<RandrNumber> outputsShowingTheSame(const RandrLayout& layout, RandrNumber output);
/// How large the screen must be.
RandrSize neededSize(const RandrLayout& layout);

/// The layout in which `output` shows what `master` shows; nothing when it has no such mode, or is
/// not online.
std::optional<RandrLayout> withMirror(RandrLayout layout, RandrNumber output, RandrNumber master);
/// The layout in which no other output shows what `output` shows: it stays, they go to the right of
/// everything. Nothing when the hardware cannot show that much, or it is not online.
std::optional<RandrLayout> withoutMirror(RandrLayout layout, RandrNumber output);

} // namespace farview
