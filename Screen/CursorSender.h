#pragma once

#include "Screen/Cursor.h"

#include <optional>
#include <vector>

namespace farview
{

/// The computer's half of the pointer: its shape is sent when the device lacks it, its place when
/// that changed. One thread.
class CursorSender
{
public:
    /// For a device that draws no pointer. `zlib` outlives this.
    explicit CursorSender(PixelCodec& zlib) : mZlib(zlib) {}

    /// Nothing: it is hidden.
    void setCursor(std::optional<Cursor> cursor);
    /// Nothing: it is not on this screen.
    void setPlace(std::optional<PixelPoint> place) { mPlace = place; }
    /// The device draws none any more.
    void deviceForgot();

    /// What the device lacks.
    std::vector<LinkScreenRectangle> takePackets();

private:
    PixelCodec& mZlib;
    std::optional<Cursor> mCursor;
    std::optional<PixelPoint> mPlace;
    // What the device has.
    bool mIsDrawn = false;
    bool mHasShape = false;
    std::optional<PixelPoint> mPlaceSent;
};

} // namespace farview
