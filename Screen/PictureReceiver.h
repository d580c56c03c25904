#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Screen/Cursor.h"

#include <optional>
#include <vector>

namespace farview
{

/// The device's half of a picture: a copy of the computer's screen, made of packets that nobody
/// vouches for. One thread.
class PictureReceiver
{
public:
    /// A black picture of that size, without a cursor. `zlib` unpacks cursors too; `others` unpack
    /// what else was agreed. The codecs outlive this.
    PictureReceiver(int width, int height, PixelCodec& zlib, std::vector<PixelCodec*> others);

    /// False when the packet breaks a rule; the connection is to be ended then. Nothing outside its
    /// rectangle changes in any case.
    bool apply(const LinkScreenRectangle& packet);

    const Picture& picture() const { return mPicture; }
    /// What changed since it was asked last, as rectangles that may overlap.
    std::vector<PixelRect> takeChanged();

    /// To be drawn over the picture, with its hotspot at `cursorPlace`; nothing when there is none.
    const std::optional<Cursor>& cursor() const { return mCursor; }
    PixelPoint cursorPlace() const { return mCursorPlace; }

private:
    bool applyCursor(const LinkScreenRectangle& packet);
    bool applyPlace(const LinkScreenRectangle& packet);
    bool applyCopy(const LinkScreenRectangle& packet);
    bool decode(const LinkScreenRectangle& packet);

    Picture mPicture;
    PixelCodec& mZlib;
    std::vector<PixelCodec*> mCodecs;
    std::optional<Cursor> mCursor;
    PixelPoint mCursorPlace;
    std::vector<PixelRect> mChanged;
};

} // namespace farview
