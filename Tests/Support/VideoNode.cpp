#include "Tests/Support/VideoNode.h"

#include <spa/param/video/format-utils.h>

#include <algorithm>
#include <array>
#include <span>

VideoNode::VideoNode(int width, int height, std::uint32_t colour)
    : mWidth(width), mHeight(height), mColour(colour), mNumber(noNumber)
{
    pw_init(nullptr, nullptr);
    mThread = pw_thread_loop_new("video", nullptr);
    auto* loop = pw_thread_loop_get_loop(mThread);
    mStream = pw_stream_new_simple(
        loop, "video",
        pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_NODE_NAME, "video", nullptr),
        &handlers(), this);
    std::array<std::uint8_t, 1024> bytes;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes.data(), bytes.size());
    const spa_rectangle size =
        SPA_RECTANGLE(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    const spa_fraction whenItChanges = SPA_FRACTION(0, 1);
    const spa_fraction rate = SPA_FRACTION(60, 1);
    const auto* format = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
        SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
        SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
        SPA_POD_Id(SPA_VIDEO_FORMAT_BGRA), SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&size),
        SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&whenItChanges), SPA_FORMAT_VIDEO_maxFramerate,
        SPA_POD_Fraction(&rate)));
    pw_stream_connect(
        mStream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS), &format,
        1);
    mTimer = pw_loop_add_timer(
        loop,
        [](void* self, std::uint64_t) {
            pw_stream_trigger_process(static_cast<VideoNode*>(self)->mStream);
        },
        this);
    timespec pause{0, 20'000'000};
    pw_loop_update_timer(loop, mTimer, &pause, &pause, false);
    pw_thread_loop_start(mThread);
}

VideoNode::~VideoNode()
{
    pw_thread_loop_stop(mThread);
    pw_stream_destroy(mStream);
    pw_loop_destroy_source(pw_thread_loop_get_loop(mThread), mTimer);
    pw_thread_loop_destroy(mThread);
    pw_deinit();
}

const pw_stream_events& VideoNode::handlers()
{
    static const pw_stream_events all = [] {
        pw_stream_events events{};
        events.version = PW_VERSION_STREAM_EVENTS;
        events.state_changed = [](void* data, pw_stream_state, pw_stream_state now, const char*) {
            auto& self = *static_cast<VideoNode*>(data);
            if (now == PW_STREAM_STATE_PAUSED)
                self.mNumber = pw_stream_get_node_id(self.mStream);
        };
        events.param_changed = [](void* data, std::uint32_t id, const spa_pod* value) {
            if (id == SPA_PARAM_Format && value)
                static_cast<VideoNode*>(data)->tellBuffers();
        };
        events.process = [](void* data) { static_cast<VideoNode*>(data)->paint(); };
        return events;
    }();
    return all;
}

void VideoNode::tellBuffers()
{
    std::array<std::uint8_t, 1024> bytes;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes.data(), bytes.size());
    const int stride = mWidth * 4;
    const auto* buffers = static_cast<const spa_pod*>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
        SPA_POD_CHOICE_RANGE_Int(4, 2, 8), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1),
        SPA_PARAM_BUFFERS_size, SPA_POD_Int(stride * mHeight), SPA_PARAM_BUFFERS_stride,
        SPA_POD_Int(stride), SPA_PARAM_BUFFERS_dataType,
        SPA_POD_CHOICE_FLAGS_Int(1 << SPA_DATA_MemFd)));
    pw_stream_update_params(mStream, &buffers, 1);
}

void VideoNode::paint()
{
    auto* buffer = pw_stream_dequeue_buffer(mStream);
    if (!buffer)
        return;
    auto& data = buffer->buffer->datas[0];
    const auto count = static_cast<std::size_t>(mWidth) * mHeight;
    std::ranges::fill(std::span(static_cast<std::uint32_t*>(data.data), count), mColour.load());
    *data.chunk = {0, static_cast<std::uint32_t>(count * 4), mWidth * 4, 0};
    pw_stream_queue_buffer(mStream, buffer);
}
