#pragma once

#include "Platform/Types/FrameView.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

namespace farview
{

inline constexpr int kPictureWidth = 1920;
inline constexpr int kPictureHeight = 1080;

/// What a source of pictures and the program that measures know of one another: a file that both
/// map, zero at first.
struct PictureRun {
    using Pixels = std::array<std::uint32_t, std::size_t{kPictureWidth} * kPictureHeight>;

    std::atomic<std::uint16_t> newest; ///< the number of the last picture that was drawn
    std::atomic<bool> isMoving;        ///< the scene has begun and not ended
    std::atomic<bool> hasEnded;        ///< the last picture stands
    std::array<double, 65536> drawn;   ///< when each number was: microsecondsNow()
    Pixels last;                       ///< what the last picture shows

    FrameView lastPicture() const
    {
        return {last.data(), kPictureWidth, kPictureHeight, kPictureWidth};
    }
};

/// Maps that file, which lasts as long as the process. Null when it cannot be done.
PictureRun* openPictureRun(const char* path);

/// A picture's number stands in its lower right corner, which is what programs that send from the
/// top send last: a row of black and white squares, and below them the same the other way round.
inline constexpr int kMarkSquare = 16;
inline constexpr PixelRect kMark =
    pixelRect(kPictureWidth - 16 * kMarkSquare, kPictureHeight - 2 * kMarkSquare, 16 * kMarkSquare,
              2 * kMarkSquare);

/// The colour of one of its 16 squares in the upper (0) or lower (1) row.
constexpr bool isMarkWhite(std::uint16_t number, int column, int row)
{
    return (number >> column & 1) != row;
}
/// The number that the pixels of `kMark` show; nothing when they show none.
std::optional<std::uint16_t> readMark(const FrameView& mark);

} // namespace farview
