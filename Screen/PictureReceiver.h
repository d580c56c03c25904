#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Screen/PixelCodec.h"

#include <optional>
#include <vector>

namespace farview
{

/// The device's half of a picture: a copy of the computer's screen, made of packets that nobody
/// vouches for. One thread.
class PictureReceiver
{
public:
    /// A black picture of that size. The codecs outlive this.
    PictureReceiver(int width, int height, std::vector<PixelCodec*> codecs);

    /// False when the packet breaks a rule; the connection is to be ended then. Nothing outside its
    /// rectangle changes in any case.
    bool apply(const LinkScreenRectangle& packet);

    const Picture& picture() const { return mPicture; }
    /// What changed since it was asked last, as rectangles that may overlap.
    std::vector<PixelRect> takeChanged();

private:
    bool applyCopy(const LinkScreenRectangle& packet);
    bool decode(const LinkScreenRectangle& packet);

    Picture mPicture;
    std::vector<PixelCodec*> mCodecs;
    std::vector<PixelRect> mChanged;
};

} // namespace farview
