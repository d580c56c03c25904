#include "Screen/ScrollSearch.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace farview
{
namespace
{

/// Less is sent again rather than copied.
constexpr int leastHeight = 64;
constexpr int leastVotes = 16;

/// Of every eighth pixel: rows that are told apart by others alone only vote the wrong way.
std::uint64_t hashOfRow(const FrameView& frame, int y, const PixelRect& columns)
{
    constexpr std::uint64_t scattering = 0x9E3779B97F4A7C15;
    std::uint64_t hash = 0;
    for (int x = columns.x; x < columns.x + columns.width; x += 8)
        hash = (hash ^ frame.row(y)[x]) * scattering;
    return hash;
}

/// How far down the rows moved: what most rows say that occurred just once before. 0: they differ.
int distanceMoved(const FrameView& before, const FrameView& after, const PixelRect& columns)
{
    constexpr int several = -1;
    std::unordered_map<std::uint64_t, int> placeOfRow;
    for (int y = columns.y; y < columns.y + columns.height; ++y) {
        const auto [place, isNew] = placeOfRow.emplace(hashOfRow(before, y, columns), y);
        if (!isNew)
            place->second = several;
    }
    std::unordered_map<int, int> votes;
    int voters = 0;
    for (int y = columns.y; y < columns.y + columns.height; ++y) {
        const auto place = placeOfRow.find(hashOfRow(after, y, columns));
        if (place == placeOfRow.end() || place->second == several)
            continue;
        ++voters;
        ++votes[y - place->second];
    }
    std::pair<int, int> winner;
    for (const auto& vote : votes) {
        if (vote.second > winner.second)
            winner = vote;
    }
    return winner.second >= leastVotes && winner.second * 4 >= voters ? winner.first : 0;
}

} // namespace

std::optional<Scroll> findScroll(const FrameView& before, const FrameView& after,
                                 const PixelRect& area)
{
    // The edges of an area often stand still: a scroll bar, a frame.
    const PixelRect columns =
        pixelRect(area.x + area.width / 4, area.y, area.width / 2, area.height);
    if (columns.width < leastHeight || columns.height < leastHeight)
        return std::nullopt;
    const int distance = distanceMoved(before, after, columns);
    if (distance == 0)
        return std::nullopt;
    int first = area.y + area.height;
    int end = area.y;
    for (int y = std::max<int>(area.y, area.y + distance);
         y < std::min(area.y + area.height, area.y + area.height + distance); ++y) {
        const bool moved =
            std::memcmp(after.row(y) + columns.x, before.row(y - distance) + columns.x,
                        static_cast<std::size_t>(columns.width) * sizeof(std::uint32_t)) == 0;
        if (!moved)
            continue;
        first = std::min(first, y);
        end = y + 1;
    }
    if (end - first < leastHeight)
        return std::nullopt;
    return Scroll{pixelPoint(area.x, first - distance),
                  pixelRect(area.x, first, area.width, end - first)};
}

} // namespace farview
