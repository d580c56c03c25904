#include "Screen/PictureSender.h"

#include "Link/Wire/ScreenPacket.h"
#include "Screen/TileChoice.h"

#include <algorithm>
#include <optional>

namespace farview
{
namespace
{

/// Where fewer change, looking for a block that moved costs more than it saves.
constexpr int scrollShare = 8;

PixelRect unionOf(const PixelRect& left, const PixelRect& right)
{
    const int x = std::min(left.x, right.x);
    const int y = std::min(left.y, right.y);
    return pixelRect(x, y, std::max(left.x + left.width, right.x + right.width) - x,
                     std::max(left.y + left.height, right.y + right.height) - y);
}

/// Neighbours in a row of tiles that are sent alike, as one rectangle.
class Run
{
public:
    /// Whether that part goes on where this run ends.
    bool continues(const PixelRect& part, bool isLossy) const
    {
        return mPart && mIsLossy == isLossy && mPart->x + mPart->width == part.x;
    }
    void add(const PixelRect& part, bool isLossy)
    {
        mPart = mPart ? unionOf(*mPart, part) : part;
        mIsLossy = isLossy;
    }
    std::optional<PixelRect> part() const { return mPart; }
    bool isLossy() const { return mIsLossy; }

private:
    std::optional<PixelRect> mPart;
    bool mIsLossy = false;
};

LinkScreenRectangle copyPacket(const Scroll& scroll)
{
    Bytes from;
    appendNumber(from, static_cast<std::uint16_t>(scroll.from.x), 2);
    appendNumber(from, static_cast<std::uint16_t>(scroll.from.y), 2);
    return {scroll.to, QLScreenEncodingCopyRect, std::move(from)};
}

} // namespace

PictureSender::PictureSender(int width, int height, PixelCodec& lossless, PixelCodec& lossy)
    : mGrid(width, height), mSent(width, height), mLossless(lossless), mLossy(lossy),
      mTiles(static_cast<std::size_t>(mGrid.count())), mDamagedTiles(mGrid.count())
{
}

void PictureSender::noteDamage(std::span<const PixelRect> damage)
{
    for (const auto& part : damage) {
        for (const int tile : mGrid.tilesUnder(part)) {
            mDamagedTiles += mTiles[tile].isDamaged ? 0 : 1;
            mTiles[tile].isDamaged = true;
        }
    }
}

PictureSender::Packets PictureSender::packetsFor(const FrameView& frame, int quality,
                                                 PictureTime now)
{
    Packets packets;
    auto changed = changedTiles(frame);
    for (const int tile : changed)
        mTiles[tile].changed = now;
    if (static_cast<int>(changed.size()) > mGrid.count() / scrollShare)
        sendScroll(frame, changed, packets);
    sendTiles(frame, changed, quality, now, packets);
    return packets;
}

std::vector<int> PictureSender::changedTiles(const FrameView& frame)
{
    std::vector<int> changed;
    for (int tile = 0; tile < mGrid.count(); ++tile) {
        if (mTiles[tile].isDamaged && !isSame(frame, mSent.view(), mGrid.rectOf(tile)))
            changed.push_back(tile);
        mTiles[tile].isDamaged = false;
    }
    mDamagedTiles = 0;
    return changed;
}

void PictureSender::sendScroll(const FrameView& frame, std::vector<int>& changed, Packets& packets)
{
    auto area = mGrid.rectOf(changed.front());
    for (const int tile : changed)
        area = unionOf(area, mGrid.rectOf(tile));
    const auto scroll = findScroll(mSent.view(), frame, area);
    if (!scroll)
        return;
    packets.push_back(copyPacket(*scroll));
    moveLoss(*scroll, mTiles[changed.front()].changed);
    mSent.move(scroll->from, scroll->to);
    changed.clear();
    for (const int tile : mGrid.tilesUnder(area)) {
        if (!isSame(frame, mSent.view(), mGrid.rectOf(tile)))
            changed.push_back(tile);
    }
}

/// What was blurred stays so where it is copied to.
void PictureSender::moveLoss(const Scroll& scroll, PictureTime now)
{
    const auto before = mTiles;
    const int down = scroll.to.y - scroll.from.y;
    for (const int tile : mGrid.tilesUnder(scroll.to)) {
        auto source = mGrid.rectOf(tile);
        source.y = static_cast<std::int16_t>(source.y - down);
        const auto from = mGrid.tilesUnder(source);
        const bool isBlurred =
            std::any_of(from.begin(), from.end(), [&](int each) { return before[each].isLossy; });
        mTiles[tile].isLossy = mTiles[tile].isLossy || isBlurred;
        mTiles[tile].changed = now;
    }
}

void PictureSender::sendTiles(const FrameView& frame, const std::vector<int>& tiles, int quality,
                              PictureTime now, Packets& packets)
{
    Run run;
    const auto endRun = [&] {
        if (const auto part = run.part())
            send(frame, *part, run.isLossy() ? mLossy : mLossless, quality, packets);
        run = {};
    };
    for (const int tile : tiles) {
        const auto whole = mGrid.rectOf(tile);
        const bool isLossy = lookOf(frame, whole) == TileLook::photograph;
        // A tile that was blurred becomes exact as a whole.
        const bool isWhole = isLossy || mTiles[tile].isLossy;
        const auto part = isWhole ? whole : changedPart(frame, whole);
        if (!run.continues(part, isLossy) || tile % mGrid.columns() == 0)
            endRun();
        run.add(part, isLossy);
        mTiles[tile].isLossy = isLossy;
        mTiles[tile].changed = now;
    }
    endRun();
}

void PictureSender::send(const FrameView& frame, const PixelRect& part, PixelCodec& codec,
                         int quality, Packets& packets)
{
    packets.push_back({part, codec.encoding(), codec.encode(frame, part, quality)});
    mSent.take(frame, part);
}

/// The rows and columns of a tile in which something differs: of text, few.
PixelRect PictureSender::changedPart(const FrameView& frame, const PixelRect& tile) const
{
    const auto sent = mSent.view();
    int top = tile.y;
    int bottom = tile.y + tile.height;
    while (top < bottom - 1 && isSameRow(frame, sent, tile.x, top, tile.width))
        ++top;
    while (bottom > top + 1 && isSameRow(frame, sent, tile.x, bottom - 1, tile.width))
        --bottom;
    int left = tile.x + tile.width;
    int right = tile.x;
    for (int y = top; y < bottom; ++y) {
        for (int x = tile.x; x < tile.x + tile.width; ++x) {
            if (frame.row(y)[x] == sent.row(y)[x])
                continue;
            left = std::min(left, x);
            right = std::max(right, x + 1);
        }
    }
    return pixelRect(left, top, right - left, bottom - top);
}

PictureSender::Packets PictureSender::refinement(int most, PictureTime now)
{
    Packets packets;
    const auto sent = mSent.view();
    for (int tile = 0; tile < mGrid.count() && static_cast<int>(packets.size()) < most; ++tile) {
        auto& state = mTiles[tile];
        if (!state.isLossy || now - state.changed < stillTime)
            continue;
        const auto part = mGrid.rectOf(tile);
        packets.push_back(
            {part, mLossless.encoding(), mLossless.encode(sent, part, kBestPictureQuality)});
        state.isLossy = false;
    }
    return packets;
}

bool PictureSender::isExact() const
{
    return std::none_of(mTiles.begin(), mTiles.end(),
                        [](const Tile& tile) { return tile.isLossy; });
}

} // namespace farview
