#include "Screen/PictureReceiver.h"

#include "Link/Wire/ScreenPacket.h"

#include <algorithm>
#include <utility>

namespace farview
{

PictureReceiver::PictureReceiver(int width, int height, PixelCodec& zlib,
                                 std::vector<PixelCodec*> others)
    : mPicture(width, height), mZlib(zlib), mCodecs(std::move(others))
{
    mCodecs.push_back(&zlib);
}

bool PictureReceiver::apply(const LinkScreenRectangle& packet)
{
    if (packet.encoding == QLScreenEncodingMousePos)
        return applyPlace(packet);
    if (packet.encoding == QLScreenEncodingMouseCursor)
        return applyCursor(packet);
    if (!mPicture.view().holds(packet.rectangle))
        return false;
    const bool isDone =
        packet.encoding == QLScreenEncodingCopyRect ? applyCopy(packet) : decode(packet);
    if (isDone)
        mChanged.push_back(packet.rectangle);
    return isDone;
}

bool PictureReceiver::applyPlace(const LinkScreenRectangle& packet)
{
    const auto& [x, y, width, height] = packet.rectangle;
    if (width != 0 || height != 0 || !packet.data.empty())
        return false;
    mCursorPlace = {x, y};
    return true;
}

bool PictureReceiver::applyCursor(const LinkScreenRectangle& packet)
{
    auto received = readCursorPacket(packet, mZlib);
    if (received)
        mCursor = std::move(received->cursor);
    return received.has_value();
}

bool PictureReceiver::applyCopy(const LinkScreenRectangle& packet)
{
    ByteReader reader(packet.data);
    const auto x = static_cast<std::int16_t>(reader.number(2));
    const auto y = static_cast<std::int16_t>(reader.number(2));
    const auto& to = packet.rectangle;
    if (!reader.isExhausted() || !mPicture.view().holds({x, y, to.width, to.height}))
        return false;
    mPicture.move({x, y}, to);
    return true;
}

bool PictureReceiver::decode(const LinkScreenRectangle& packet)
{
    const auto codec = std::find_if(mCodecs.begin(), mCodecs.end(), [&](const PixelCodec* each) {
        return each->encoding() == packet.encoding;
    });
    return codec != mCodecs.end() && (*codec)->decode(packet.data, mPicture, packet.rectangle);
}

std::vector<PixelRect> PictureReceiver::takeChanged() { return std::exchange(mChanged, {}); }

} // namespace farview
