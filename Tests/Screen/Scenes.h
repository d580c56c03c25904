#pragma once

#include "Screen/Picture.h"

#include <cstdint>
#include <random>

namespace farview
{

/// What screens show, made of a seed: the same every time.
class Scenes
{
public:
    explicit Scenes(unsigned seed = 1) : mRandom(seed) {}

    /// Lines of dark strokes on white paper, each line unlike the others.
    void writeText(Picture& picture, const PixelRect& part)
    {
        constexpr std::uint32_t paper = 0xffffff;
        constexpr std::uint32_t ink = 0x202020;
        for (int y = part.y; y < part.y + part.height; ++y) {
            const bool isBetweenLines = y % 16 >= 10;
            for (int x = part.x; x < part.x + part.width; ++x) {
                const bool isStroke = !isBetweenLines && x % 8 < 6 && mRandom() % 4 == 0;
                picture.row(y)[x] = isStroke ? ink : paper;
            }
        }
    }

    /// Noise on a slope of colours, as a camera sees it.
    void takePhotograph(Picture& picture, const PixelRect& part)
    {
        for (int y = part.y; y < part.y + part.height; ++y) {
            for (int x = part.x; x < part.x + part.width; ++x) {
                const auto grey = static_cast<std::uint32_t>(64 + (x + y) / 8 % 128);
                picture.row(y)[x] = (grey + mRandom() % 16) << 16 | (grey + mRandom() % 16) << 8 |
                                    (grey + mRandom() % 16);
            }
        }
    }

    /// A number from 0 to `most`.
    int number(int most) { return static_cast<int>(mRandom() % (static_cast<unsigned>(most) + 1)); }

private:
    std::mt19937 mRandom;
};

inline PixelRect wholeOf(const Picture& picture)
{
    return pixelRect(0, 0, picture.width(), picture.height());
}

/// Moves everything but the lowest rows down or up, as a window scrolls; what appears is text.
inline void scroll(Picture& picture, int down, Scenes& scenes)
{
    const int rows = picture.height() - std::abs(down);
    const int from = down > 0 ? 0 : -down;
    const int to = down > 0 ? down : 0;
    picture.move(pixelPoint(0, from), pixelRect(0, to, picture.width(), rows));
    scenes.writeText(picture, pixelRect(0, down > 0 ? 0 : rows, picture.width(), std::abs(down)));
}

} // namespace farview
