#include "Platform/Desktop/Screens/PipeWireStream.h"

#include "Platform/Desktop/Screens/StreamBuffer.h"
#include "Platform/Desktop/Screens/StreamParameters.h"

#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

namespace farview
{
namespace
{

// PipeWire drops a buffer that was not taken before the next one came, and one that brings nothing
// but the pointer often comes right after a frame. Then the picture stays old until something
// changes, unless it is asked for: soon when only the pointer came, after a while when there seem
// to be no more frames, and less and less often when the answer brings nothing new.
constexpr std::chrono::milliseconds patience{200};
constexpr std::chrono::milliseconds patienceAfterFrame{1000};
constexpr std::chrono::milliseconds longestPatience{10'000};

/// More than any picture that a graphics processor holds.
constexpr int longestSide = 16384;

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
    spa_hook_remove(&mRegistryHook);
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
        events.done = call<&PipeWireStream::useDone>;
        events.error = call<&PipeWireStream::useError>;
        return events;
    }();
    return all;
}

bool PipeWireStream::isPossible(int width, int height)
{
    return width > 0 && width <= longestSide && height > 0 && height <= longestSide;
}

const pw_registry_events& PipeWireStream::registryHandlers()
{
    static const pw_registry_events all = [] {
        pw_registry_events events{};
        events.version = PW_VERSION_REGISTRY_EVENTS;
        events.global_remove = call<&PipeWireStream::useRemoval>;
        return events;
    }();
    return all;
}

void PipeWireStream::connect(Source source, int width, int height)
{
    if (!begin(std::move(source), {width, height}))
        end(ScreenObstacle::failed);
}

pw_core* PipeWireStream::reach(FileDescriptor remote)
{
    if (!mContext || !remote.isOpen())
        return mContext ? pw_context_connect(mContext.get(), nullptr, 0) : nullptr;
    return pw_context_connect_fd(mContext.get(), remote.release(), nullptr, 0);
}

/// Everything belongs to the thread as soon as that runs.
bool PipeWireStream::begin(Source source, Size size)
{
    mRepeats = source.repeats;
    mThread.reset(pw_thread_loop_new("screen", nullptr));
    if (!mThread)
        return false;
    auto* loop = pw_thread_loop_get_loop(mThread.get());
    mContext.reset(pw_context_new(loop, nullptr, 0));
    auto* core = reach(std::move(source.remote));
    if (!core ||
        !pw_loop_add_io(loop, mWake->get(), SPA_IO_IN, false, call<&PipeWireStream::wake>, this))
        return false;
    mTimer = pw_loop_add_timer(loop, call<&PipeWireStream::refresh>, this);
    pw_core_add_listener(core, &mCoreHook, &coreHandlers(), this);
    auto* registry = pw_core_get_registry(core, PW_VERSION_REGISTRY, 0);
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY,
                                         "Capture", PW_KEY_MEDIA_ROLE, "Screen", nullptr);
    mStream.reset(pw_stream_new(core, "Farview", properties));
    if (!mStream || !mTimer || !registry)
        return false;
    mNode = source.node;
    mAsked = size;
    pw_registry_add_listener(registry, &mRegistryHook, &registryHandlers(), this);
    pw_stream_add_listener(mStream.get(), &mHook, &handlers(), this);
    ParameterMemory memory;
    auto formats = formatsFor(size.width, size.height, &memory.builder);
    // Never another node in its place: that could be a camera.
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_DONT_RECONNECT);
    return pw_stream_connect(mStream.get(), PW_DIRECTION_INPUT, source.node, flags, formats.data(),
                             formats.size()) == 0 &&
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
    mPatience = patience;
    mAsked = size;
    askAgain();
}

/// Mutter 43 may send nothing more when it is told to pause before it has sent a frame of that
/// size.
void PipeWireStream::askAgain()
{
    if (mPause == Pause::wanted)
        mPause = Pause::dropped;
    mIsEmpty = true;
    refreshIn(std::max(mPatience, patienceAfterFrame));
    ParameterMemory memory;
    auto formats = formatsFor(mAsked.width, mAsked.height, &memory.builder);
    pw_stream_update_params(mStream.get(), formats.data(), formats.size());
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

void PipeWireStream::useDone(std::uint32_t id, int sequence)
{
    if (id == PW_ID_CORE && mPause == Pause::over && sequence == mSequence)
        goOn();
}

/// Heard before the stream tells of its end.
void PipeWireStream::useError(std::uint32_t id, int, int result, const char*)
{
    if (id == PW_ID_CORE && result == -EPIPE)
        end(ScreenObstacle::failed);
}

/// Where WirePlumber is new, a stream only idles when its node has gone.
void PipeWireStream::useRemoval(std::uint32_t id)
{
    if (id == mNode)
        end(ScreenObstacle::takenAway);
}

void PipeWireStream::useState(pw_stream_state, pw_stream_state now, const char*)
{
    if (now == PW_STREAM_STATE_PAUSED && mPause == Pause::begun)
        mPause = Pause::reached;
    if (now == PW_STREAM_STATE_STREAMING && mPause == Pause::reached) {
        mPause = Pause::over;
        mSequence = pw_core_sync(pw_stream_get_core(mStream.get()), PW_ID_CORE, 0);
    }
    if (now == PW_STREAM_STATE_ERROR || now == PW_STREAM_STATE_UNCONNECTED)
        end(ScreenObstacle::takenAway);
}

void PipeWireStream::useParameter(std::uint32_t id, const spa_pod* value)
{
    if (id != SPA_PARAM_Format || !value)
        return;
    spa_video_info_raw format{};
    const bool isKnown = spa_format_video_raw_parse(value, &format) >= 0;
    const Size size{static_cast<int>(format.size.width), static_cast<int>(format.size.height)};
    if (isKnown && isPossible(size.width, size.height))
        useFormat(size);
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
    mIsEmpty = true;
    refreshIn(std::max(mPatience, patienceAfterFrame));
    mScreen->setBuffer({mPixels->data(), size.width, size.height, size.width}, mPixels);
    ParameterMemory memory;
    auto parameters = buffersWithPointer(&memory.builder);
    pw_stream_update_params(mStream.get(), parameters.data(), parameters.size());
    tell([size](const auto& events) { events.sized(size.width, size.height); });
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
        useArrival(*buffer->buffer);
        const bool hasPixels = pixelsIn(*buffer->buffer, mSize.width, mSize.height).has_value();
        if (hasPixels)
            std::swap(buffer, mNewest);
        if (const bool wasInDoubt = std::exchange(mIsInDoubt, !hasPixels); hasPixels)
            refreshIn(std::max(mPatience, patienceAfterFrame));
        else if (!wasInDoubt)
            refreshIn(mPatience);
        if (buffer)
            pw_stream_queue_buffer(mStream.get(), buffer);
    }
    copyNewest();
}

void PipeWireStream::useArrival(const spa_buffer& buffer)
{
    // After another size PipeWire 0.3 may have buffers without memory, and go on with them.
    if (mIsEmpty && buffer.datas[0].type == SPA_ID_INVALID)
        return mPatience == patience ? refresh(0) : void();
    if (std::exchange(mIsEmpty, false))
        refreshIn(mPatience = patience);
}

void PipeWireStream::refresh(std::uint64_t)
{
    mPatience = std::min(2 * mPatience, longestPatience);
    if (mIsEmpty)
        return askAgain();
    refreshIn(mPatience);
    if (mPause == Pause::wanted || mPause == Pause::dropped)
        return;
    if (mPause != Pause::none)
        return goOn();
    mPause = Pause::wanted;
    if (mEvents->wantsPause)
        tell([](const auto& events) { events.wantsPause(); });
    else
        restart({});
}

void PipeWireStream::goOn()
{
    mPause = Pause::none;
    if (mEvents->resumed)
        tell([](const auto& events) { events.resumed(); });
}

void PipeWireStream::pause() { perform<&PipeWireStream::restart>(Size{}); }

/// Each node sends a whole frame that begins to stream.
void PipeWireStream::restart(const Size&)
{
    if (mPause == Pause::dropped)
        return goOn();
    mPause = Pause::begun;
    pw_stream_set_active(mStream.get(), false);
    pw_stream_set_active(mStream.get(), true);
    refreshIn(patience);
}

/// Instead of when it was due before.
void PipeWireStream::refreshIn(std::chrono::milliseconds delay)
{
    if (!mRepeats)
        return;
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
