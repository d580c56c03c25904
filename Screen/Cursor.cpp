#include "Screen/Cursor.h"

#include "Link/Wire/ScreenPacket.h"

namespace farview
{

LinkScreenRectangle cursorPlacePacket(const PixelPoint& place)
{
    return {pixelRect(place.x, place.y, 0, 0), QLScreenEncodingMousePos, {}};
}

LinkScreenRectangle cursorPacket(const Cursor& cursor, PixelCodec& zlib)
{
    const auto& image = cursor.image;
    const auto whole = pixelRect(0, 0, image.width(), image.height());
    return {pixelRect(cursor.hotspot.x, cursor.hotspot.y, image.width(), image.height()),
            QLScreenEncodingMouseCursor, zlib.encode(image.view(), whole, kBestPictureQuality)};
}

LinkScreenRectangle noCursorPacket() { return {{}, QLScreenEncodingMouseCursor, {}}; }

std::optional<ReceivedCursor> readCursorPacket(const LinkScreenRectangle& packet, PixelCodec& zlib)
{
    const auto& [x, y, width, height] = packet.rectangle;
    if (width == 0 && height == 0)
        return packet.data.empty() ? std::optional<ReceivedCursor>(std::in_place) : std::nullopt;
    const auto isSide = [](int side) { return side >= 1 && side <= Cursor::largestSide; };
    if (!isSide(width) || !isSide(height) || x < 0 || x >= width || y < 0 || y >= height)
        return std::nullopt;
    Cursor cursor{{x, y}, Picture(width, height)};
    if (!zlib.decode(packet.data, cursor.image, pixelRect(0, 0, width, height)))
        return std::nullopt;
    return ReceivedCursor{std::move(cursor)};
}

} // namespace farview
