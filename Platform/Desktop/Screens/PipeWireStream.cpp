#include "Platform/Desktop/Screens/PipeWireStream.h"

#include "Platform/Desktop/Screens/StreamBuffer.h"

#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

// PipeWire drops a buffer that was not taken before the next one came, and another one that brings
// nothing but the pointer often comes right after a frame; now and then nothing comes at all. Then
// the picture stays old until something changes, unless it is asked for: soon when only the pointer
// came, after a while when there seem to be no more frames, and less and less often when the answer
// brings nothing new.
constexpr std::chrono::milliseconds patience{200};
constexpr std::chrono::milliseconds patienceAfterFrame{1000};
constexpr std::chrono::milliseconds longestPatience{10'000};

constexpr int longestSide = std::numeric_limits<std::int16_t>::max();

/// Memory in which parameters are written.
struct ParameterMemory {
    std::array<std::uint8_t, 1024> bytes;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes.data(), sizeof bytes);
};

/// A single size: whoever makes the monitor follows it.
const spa_pod* formatOf(int width, int height, spa_pod_builder* builder)
{
    const spa_rectangle pixels =
        SPA_RECTANGLE(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    const spa_fraction whenItChanges = SPA_FRACTION(0, 1);
    const spa_fraction usualRate = SPA_FRACTION(60, 1);
    const spa_fraction lowestRate = SPA_FRACTION(1, 1);
    const spa_fraction highestRate = SPA_FRACTION(144, 1);
    return static_cast<const spa_pod*>(spa_pod_builder_add_object(
        builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
        SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
        SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
        SPA_POD_CHOICE_ENUM_Id(3, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRx,
                               SPA_VIDEO_FORMAT_BGRA),
        SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&pixels), SPA_FORMAT_VIDEO_framerate,
        SPA_POD_Fraction(&whenItChanges), SPA_FORMAT_VIDEO_maxFramerate,
        SPA_POD_CHOICE_RANGE_Fraction(&usualRate, &lowestRate, &highestRate)));
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

PipeWireStream::PipeWireStream(RunLoop& loop, Events events)
    : mLoop(loop), mEvents(std::make_shared<Events>(std::move(events))),
      mWake(std::make_shared<FileDescriptor>(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))),
      mScreen(std::make_shared<CapturedScreen>([wake = mWake] { ::eventfd_write(wake->get(), 1); }))
{
}

PipeWireStream::~PipeWireStream()
{
    if (mThread)
        pw_thread_loop_stop(mThread.get());
    // What follows is no news.
    spa_hook_remove(&mHook);
    spa_hook_remove(&mCoreHook);
}

template <auto operation, typename... Arguments>
void PipeWireStream::call(void* self, Arguments... arguments)
{
    auto& stream = *static_cast<PipeWireStream*>(self);
    try {
        (stream.*operation)(arguments...);
    } catch (const std::exception&) {
        // No memory.
        stream.end(ScreenObstacle::failed);
    }
}

const pw_stream_events& PipeWireStream::handlers()
{
    static const pw_stream_events all = [] {
        pw_stream_events events{};
        events.version = PW_VERSION_STREAM_EVENTS;
        events.state_changed = call<&PipeWireStream::useState>;
        events.param_changed = call<&PipeWireStream::useParameter>;
        events.remove_buffer = call<&PipeWireStream::forget>;
        events.process = call<&PipeWireStream::process>;
        return events;
    }();
    return all;
}

const pw_core_events& PipeWireStream::coreHandlers()
{
    static const pw_core_events all = [] {
        pw_core_events events{};
        events.version = PW_VERSION_CORE_EVENTS;
        events.error = call<&PipeWireStream::useError>;
        return events;
    }();
    return all;
}

void PipeWireStream::connect(std::uint32_t node, int width, int height)
{
    if (!begin(node, {width, height}))
        end(ScreenObstacle::failed);
}

/// Everything belongs to the thread as soon as that runs.
bool PipeWireStream::begin(std::uint32_t node, Size size)
{
    mThread.reset(pw_thread_loop_new("screen", nullptr));
    if (!mThread)
        return false;
    auto* loop = pw_thread_loop_get_loop(mThread.get());
    mContext.reset(pw_context_new(loop, nullptr, 0));
    auto* core = mContext ? pw_context_connect(mContext.get(), nullptr, 0) : nullptr;
    if (!core ||
        !pw_loop_add_io(loop, mWake->get(), SPA_IO_IN, false, call<&PipeWireStream::wake>, this))
        return false;
    mTimer = pw_loop_add_timer(loop, call<&PipeWireStream::refresh>, this);
    pw_core_add_listener(core, &mCoreHook, &coreHandlers(), this);
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY,
                                         "Capture", PW_KEY_MEDIA_ROLE, "Screen", nullptr);
    mStream.reset(pw_stream_new(core, "Farview", properties));
    if (!mStream || !mTimer)
        return false;
    pw_stream_add_listener(mStream.get(), &mHook, &handlers(), this);
    ParameterMemory memory;
    const spa_pod* format = formatOf(size.width, size.height, &memory.builder);
    // Never another node in its place: that could be a camera.
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_DONT_RECONNECT);
    return pw_stream_connect(mStream.get(), PW_DIRECTION_INPUT, node, flags, &format, 1) == 0 &&
           pw_thread_loop_start(mThread.get()) == 0;
}

/// On PipeWire's thread.
template <auto operation, typename Argument> void PipeWireStream::perform(const Argument& argument)
{
    const auto action = [](spa_loop*, bool, std::uint32_t, const void* data, std::size_t,
                           void* self) {
        (static_cast<PipeWireStream*>(self)->*operation)(*static_cast<const Argument*>(data));
        return 0;
    };
    if (mStream)
        pw_loop_invoke(pw_thread_loop_get_loop(mThread.get()), action, 0, &argument,
                       sizeof argument, false, this);
}

void PipeWireStream::resize(int width, int height)
{
    perform<&PipeWireStream::ask>(Size{width, height});
}

void PipeWireStream::show(int width, int height, bool isOld)
{
    perform<&PipeWireStream::release>(Release{{width, height}, isOld});
}

void PipeWireStream::ask(const Size& size)
{
    ParameterMemory memory;
    const spa_pod* format = formatOf(size.width, size.height, &memory.builder);
    pw_stream_update_params(mStream.get(), &format, 1);
}

void PipeWireStream::release(const Release& held)
{
    const bool wasHeld = std::exchange(mShown, held.size) != mSize;
    if (wasHeld && held.isOld && mNewest) {
        pw_stream_queue_buffer(mStream.get(), std::exchange(mNewest, nullptr));
        refresh(0);
    }
    copyNewest();
}

void PipeWireStream::tell(std::function<void(const Events&)> news)
{
    mLoop.post(mEvents, [events = mEvents.get(), news = std::move(news)] { news(*events); });
}

void PipeWireStream::end(ScreenObstacle reason)
{
    if (!std::exchange(mHasEnded, true))
        tell([reason](const auto& events) { events.ended(reason); });
}

/// Heard before the stream tells of its end.
void PipeWireStream::useError(std::uint32_t id, int, int result, const char*)
{
    if (id == PW_ID_CORE && result == -EPIPE)
        end(ScreenObstacle::failed);
}

void PipeWireStream::useState(pw_stream_state, pw_stream_state now, const char*)
{
    mIsPaused = mIsPaused || now == PW_STREAM_STATE_PAUSED;
    if (now == PW_STREAM_STATE_ERROR || now == PW_STREAM_STATE_UNCONNECTED)
        end(ScreenObstacle::takenAway);
}

void PipeWireStream::useParameter(std::uint32_t id, const spa_pod* value)
{
    if (id != SPA_PARAM_Format || !value)
        return;
    spa_video_info_raw format{};
    const bool isKnown = spa_format_video_raw_parse(value, &format) >= 0;
    const auto [width, height] = format.size;
    if (isKnown && width > 0 && width <= longestSide && height > 0 && height <= longestSide)
        useFormat({static_cast<int>(width), static_cast<int>(height)});
    else
        end(ScreenObstacle::failed);
}

void PipeWireStream::useFormat(Size size)
{
    const auto count = static_cast<std::size_t>(size.width) * size.height;
    mPixels = std::make_shared<std::vector<std::uint32_t>>(count);
    mSize = size;
    mIsFirst = true;
    mIsInDoubt = true;
    refreshIn(mPatience = patience);
    mScreen->setBuffer({mPixels->data(), size.width, size.height, size.width}, mPixels);
    ParameterMemory memory;
    std::array parameters = {
        buffersIn(&memory.builder),
        metaOf(SPA_META_Header, sizeof(spa_meta_header), sizeof(spa_meta_header), &memory.builder),
        metaOf(SPA_META_Cursor, cursorMemory(384), cursorMemory(1), &memory.builder)};
    pw_stream_update_params(mStream.get(), parameters.data(), parameters.size());
}

void PipeWireStream::forget(pw_buffer* buffer)
{
    if (mNewest == buffer)
        mNewest = nullptr;
}

void PipeWireStream::process()
{
    while (auto* buffer = pw_stream_dequeue_buffer(mStream.get())) {
        usePointer(*buffer->buffer);
        const bool hasPixels = pixelsIn(*buffer->buffer, mSize.width, mSize.height).has_value();
        if (hasPixels) {
            std::swap(buffer, mNewest);
            goOn();
        }
        if (const bool wasInDoubt = std::exchange(mIsInDoubt, !hasPixels); hasPixels)
            refreshIn(std::max(mPatience, patienceAfterFrame));
        else if (!wasInDoubt)
            refreshIn(mPatience);
        if (buffer)
            pw_stream_queue_buffer(mStream.get(), buffer);
    }
    copyNewest();
}

void PipeWireStream::refresh(std::uint64_t)
{
    goOn();
    if (mEvents->wantsPause)
        tell([](const auto& events) { events.wantsPause(); });
    else
        restart({});
    refreshIn(mPatience = std::min(2 * mPatience, longestPatience));
}

void PipeWireStream::goOn()
{
    if (std::exchange(mIsPaused, false) && mEvents->resumed)
        tell([](const auto& events) { events.resumed(); });
}

void PipeWireStream::pause() { perform<&PipeWireStream::restart>(Size{}); }

/// Each node sends a whole frame that begins to stream.
void PipeWireStream::restart(const Size&)
{
    pw_stream_set_active(mStream.get(), false);
    pw_stream_set_active(mStream.get(), true);
}

/// Instead of when it was due before.
void PipeWireStream::refreshIn(std::chrono::milliseconds delay)
{
    const std::chrono::nanoseconds rest = delay % std::chrono::seconds(1);
    timespec value{delay / std::chrono::seconds(1), rest.count()};
    pw_loop_update_timer(pw_thread_loop_get_loop(mThread.get()), mTimer, &value, nullptr, false);
}

void PipeWireStream::usePointer(const spa_buffer& buffer)
{
    auto news = pointerIn(buffer);
    if (!news)
        return;
    const bool looksDifferent = news->image && *news->image != mPointer;
    if (looksDifferent)
        mScreen->setCursor(mPointer = std::move(*news->image));
    if (mScreen->moveCursor(news->position) || looksDifferent)
        tell([](const auto& events) { events.cursorChanged(); });
}

void PipeWireStream::wake(int descriptor, std::uint32_t)
{
    eventfd_t count = 0;
    ::eventfd_read(descriptor, &count);
    copyNewest();
}

void PipeWireStream::copyNewest()
{
    if (mSize != mShown || !mNewest || !mScreen->beginFrame())
        return;
    const bool isNews = mScreen->endFrame(copy(*mNewest->buffer));
    pw_stream_queue_buffer(mStream.get(), std::exchange(mNewest, nullptr));
    if (isNews)
        tell([](const auto& events) { events.frameReady(); });
}

/// Returns where the frame differs from the one before it.
std::vector<PixelRect> PipeWireStream::copy(const spa_buffer& buffer)
{
    const auto view = pixelsIn(buffer, mSize.width, mSize.height);
    if (!view)
        return {};
    auto changes = copyChangedRows(*view, mPixels->data());
    if (!changes.empty())
        mPatience = patience;
    if (std::exchange(mIsFirst, false))
        changes = {pixelRect(0, 0, mSize.width, mSize.height)};
    return changes;
}

} // namespace farview
