#include "Platform/Desktop/Screens/StreamBuffer.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>

#include <algorithm>
#include <limits>

namespace farview
{
namespace
{

constexpr std::uint32_t pixelSize = sizeof(std::uint32_t);
constexpr int longestSide = std::numeric_limits<std::int16_t>::max();

/// Pixels in a piece of memory.
struct Layout {
    std::uint64_t offset = 0;
    std::int64_t stride = 0; ///< in bytes
    std::int64_t width = 0;
    std::int64_t height = 0;

    bool fits(std::uint64_t memory) const
    {
        return width > 0 && width <= longestSide && height > 0 && height <= longestSide &&
               offset <= memory && offset % pixelSize == 0 && stride % pixelSize == 0 &&
               stride >= width * pixelSize &&
               static_cast<std::uint64_t>((height - 1) * stride + width * pixelSize) <=
                   memory - offset;
    }
};

bool isCorrupted(const spa_buffer& buffer)
{
    const auto* header = static_cast<const spa_meta_header*>(
        spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
    return (header && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED)) ||
           (buffer.datas[0].chunk->flags & SPA_CHUNK_FLAG_CORRUPTED);
}

/// The bytes of one pixel as a CursorImage has them; nothing for orders that nobody uses.
std::optional<std::uint32_t> cursorPixel(const std::uint8_t* bytes, std::uint32_t format)
{
    const auto word = [&](int red, int green, int blue) {
        return std::uint32_t{bytes[3]} << 24 | std::uint32_t{bytes[red]} << 16 |
               std::uint32_t{bytes[green]} << 8 | bytes[blue];
    };
    switch (format) {
    case SPA_VIDEO_FORMAT_RGBA:
        return word(0, 1, 2);
    case SPA_VIDEO_FORMAT_BGRA:
        return word(2, 1, 0);
    default:
        return std::nullopt;
    }
}

CursorImage imageOf(const std::uint8_t* first, const Layout& layout, std::uint32_t format)
{
    CursorImage image{static_cast<int>(layout.width), static_cast<int>(layout.height), {}, {}};
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const auto pixel = cursorPixel(first + y * layout.stride + x * pixelSize, format);
            if (!pixel)
                return {};
            image.pixels.push_back(*pixel);
        }
    }
    return image;
}

/// Nothing when there is no new image. One that is hidden has no size.
std::optional<CursorImage> imageIn(const spa_meta& meta, const spa_meta_cursor& cursor)
{
    const std::uint64_t offset = cursor.bitmap_offset;
    if (offset < sizeof cursor || offset % pixelSize != 0 ||
        offset + sizeof(spa_meta_bitmap) > meta.size)
        return std::nullopt;
    const auto* memory = static_cast<const std::uint8_t*>(meta.data) + offset;
    const auto bitmap = *reinterpret_cast<const spa_meta_bitmap*>(memory);
    if (!spa_meta_bitmap_is_valid(&bitmap))
        return std::nullopt;
    const Layout layout{bitmap.offset, bitmap.stride, bitmap.size.width, bitmap.size.height};
    if (bitmap.offset < sizeof bitmap || !layout.fits(meta.size - offset))
        return CursorImage{};
    auto image = imageOf(memory + layout.offset, layout, bitmap.format);
    image.hotspot = pixelPoint(cursor.hotspot.x, cursor.hotspot.y);
    return image;
}

bool isOnAScreen(const spa_point& point)
{
    return point.x >= 0 && point.x <= longestSide && point.y >= 0 && point.y <= longestSide;
}

} // namespace

// Who fills a buffer may change it while it is read: what is checked is copied before.

std::optional<FrameView> pixelsIn(const spa_buffer& buffer, int width, int height)
{
    if (buffer.n_datas == 0 || !buffer.datas[0].data || isCorrupted(buffer))
        return std::nullopt;
    const spa_data& data = buffer.datas[0];
    const spa_chunk chunk = *data.chunk;
    const Layout layout{chunk.offset, chunk.stride, width, height};
    if (!layout.fits(std::min<std::uint64_t>(data.maxsize, layout.offset + chunk.size)))
        return std::nullopt;
    const auto* first = static_cast<const std::uint8_t*>(data.data) + layout.offset;
    return FrameView{reinterpret_cast<const std::uint32_t*>(first), width, height,
                     static_cast<int>(layout.stride / pixelSize)};
}

std::optional<PointerNews> pointerIn(const spa_buffer& buffer)
{
    const auto* meta = spa_buffer_find_meta(&buffer, SPA_META_Cursor);
    if (!meta || meta->size < sizeof(spa_meta_cursor))
        return std::nullopt;
    const auto cursor = *static_cast<const spa_meta_cursor*>(meta->data);
    if (!spa_meta_cursor_is_valid(&cursor))
        return PointerNews{};
    PointerNews news{std::nullopt, imageIn(*meta, cursor)};
    if (isOnAScreen(cursor.position))
        news.position = pixelPoint(cursor.position.x, cursor.position.y);
    return news;
}

} // namespace farview
