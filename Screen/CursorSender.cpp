#include "Screen/CursorSender.h"

#include <utility>

namespace farview
{

void CursorSender::setCursor(std::optional<Cursor> cursor)
{
    mCursor = std::move(cursor);
    // What the device draws is an old shape; without one it draws nothing.
    mHasShape = false;
}

void CursorSender::deviceForgot()
{
    mIsDrawn = false;
    mHasShape = false;
    mPlaceSent.reset();
}

std::vector<LinkScreenRectangle> CursorSender::takePackets()
{
    std::vector<LinkScreenRectangle> packets;
    const bool isVisible = mCursor && mPlace;
    if (isVisible && !std::exchange(mHasShape, true))
        packets.push_back(cursorPacket(*mCursor, mZlib));
    if (!isVisible && mIsDrawn) {
        packets.push_back(noCursorPacket());
        mHasShape = false;
    }
    mIsDrawn = isVisible;
    if (isVisible && std::exchange(mPlaceSent, mPlace) != mPlace)
        packets.push_back(cursorPlacePacket(*mPlace));
    return packets;
}

} // namespace farview
