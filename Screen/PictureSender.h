#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Screen/Pacing.h"
#include "Screen/PixelCodec.h"
#include "Screen/ScrollSearch.h"
#include "Screen/TileGrid.h"

#include <span>
#include <vector>

namespace farview
{

/// The computer's half of a picture: compares each frame with what the device has, and makes the
/// packets that bring the device up to date. Changes add up between frames, so a device that is
/// slow gets the newest state of each tile once. One thread.
class PictureSender
{
public:
    using Packets = std::vector<LinkScreenRectangle>;

    /// How long a tile stands still before it is sent once more without loss.
    static constexpr PictureTime stillTime = std::chrono::milliseconds(100);

    /// For a device whose picture is black, of that size. The codecs outlive this.
    PictureSender(int width, int height, PixelCodec& lossless, PixelCodec& lossy);

    /// Something may have changed there: a hint, which may be too large and reach outside.
    void noteDamage(std::span<const PixelRect> damage);
    /// The tiles in which something may have changed since the last frame.
    int damagedTiles() const { return mDamagedTiles; }

    /// What turns the device's picture into this frame, of the picture's size; in order, each
    /// packet after those before it. Empty where nothing changed.
    Packets packetsFor(const FrameView& frame, int quality, PictureTime now);
    /// Sends tiles without loss that were sent with loss and stood still since, `most` of them;
    /// from what the last frame held. Empty where there is none yet.
    Packets refinement(int most, PictureTime now);
    /// Whether the device's picture equals the last frame bit for bit.
    bool isExact() const;

private:
    struct Tile {
        bool isDamaged = true;
        bool isLossy = false;
        PictureTime changed{};
    };

    std::vector<int> changedTiles(const FrameView& frame);
    void sendScroll(const FrameView& frame, std::vector<int>& changed, Packets& packets);
    void moveLoss(const Scroll& scroll, PictureTime now);
    void sendTiles(const FrameView& frame, const std::vector<int>& tiles, int quality,
                   PictureTime now, Packets& packets);
    void send(const FrameView& frame, const PixelRect& part, PixelCodec& codec, int quality,
              Packets& packets);
    PixelRect changedPart(const FrameView& frame, const PixelRect& tile) const;

    TileGrid mGrid;
    Picture mSent; ///< the pixels that the device was told of, before loss
    PixelCodec& mLossless;
    PixelCodec& mLossy;
    std::vector<Tile> mTiles;
    int mDamagedTiles;
};

} // namespace farview
