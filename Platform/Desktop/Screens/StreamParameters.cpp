#include "Platform/Desktop/Screens/StreamParameters.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>

namespace farview
{
namespace
{

/// Without a size it is the node's own.
const spa_pod* formatOf(const spa_rectangle* size, spa_pod_builder* builder)
{
    const spa_fraction whenItChanges = SPA_FRACTION(0, 1);
    const spa_fraction usualRate = SPA_FRACTION(60, 1);
    const spa_fraction lowestRate = SPA_FRACTION(1, 1);
    const spa_fraction highestRate = SPA_FRACTION(144, 1);
    spa_pod_frame frame{};
    spa_pod_builder_push_object(builder, &frame, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_add(
        builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
        SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
        SPA_POD_CHOICE_ENUM_Id(3, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRx,
                               SPA_VIDEO_FORMAT_BGRA),
        SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&whenItChanges), SPA_FORMAT_VIDEO_maxFramerate,
        SPA_POD_CHOICE_RANGE_Fraction(&usualRate, &lowestRate, &highestRate), 0);
    if (size)
        spa_pod_builder_add(builder, SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(size), 0);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(builder, &frame));
}

/// Buffers in memory that a processor reads well. One may wait for a frame to come back.
const spa_pod* buffersIn(spa_pod_builder* builder)
{
    constexpr int kinds = 1 << SPA_DATA_MemFd | 1 << SPA_DATA_MemPtr;
    return static_cast<const spa_pod*>(
        spa_pod_builder_add_object(builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers,
                                   SPA_PARAM_BUFFERS_buffers, SPA_POD_CHOICE_RANGE_Int(4, 3, 8),
                                   SPA_PARAM_BUFFERS_dataType, SPA_POD_CHOICE_FLAGS_Int(kinds)));
}

const spa_pod* metaOf(spa_meta_type type, int usual, int least, spa_pod_builder* builder)
{
    return static_cast<const spa_pod*>(spa_pod_builder_add_object(
        builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(type),
        SPA_PARAM_META_size, SPA_POD_CHOICE_RANGE_Int(usual, least, usual)));
}

constexpr int cursorMemory(int side)
{
    return static_cast<int>(sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) + side * side * 4;
}

} // namespace

std::array<const spa_pod*, 2> formatsFor(int width, int height, spa_pod_builder* builder)
{
    const spa_rectangle wanted =
        SPA_RECTANGLE(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    return {formatOf(&wanted, builder), formatOf(nullptr, builder)};
}

std::array<const spa_pod*, 3> buffersWithPointer(spa_pod_builder* builder)
{
    return {buffersIn(builder),
            metaOf(SPA_META_Header, sizeof(spa_meta_header), sizeof(spa_meta_header), builder),
            metaOf(SPA_META_Cursor, cursorMemory(384), cursorMemory(1), builder)};
}

} // namespace farview
