#include "Platform/Desktop/Screens/Wlroots/ScreenCopy.h"

#include "Platform/Posix/FileDescriptor.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <wayland-client.h>
#include <wayland-protocols/wlr-screencopy.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// In the flags of a copy.
constexpr std::uint32_t isUpsideDown = 1;

constexpr std::uint32_t pixelSize = sizeof(std::uint32_t);
constexpr std::uint32_t longestSide = 16384;

/// A copy fails while the output gets another mode.
constexpr Duration pause{0.005};
constexpr int mostFailures = 400;

/// Memory that the compositor can write to, and not take away.
std::shared_ptr<std::uint32_t> sharedMemory(std::size_t size, FileDescriptor& file)
{
    file = FileDescriptor(::memfd_create("frames", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    void* memory = MAP_FAILED;
    if (file.isOpen() && ::ftruncate(file.get(), static_cast<off_t>(size)) == 0 &&
        ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK) == 0)
        memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED)
        return nullptr;
    return {static_cast<std::uint32_t*>(memory),
            [size](std::uint32_t* mapped) { ::munmap(mapped, size); }};
}

std::uint32_t withRedAndBlueSwapped(std::uint32_t pixel)
{
    return (pixel & 0x0000FF00) | (pixel & 0xFF) << 16 | (pixel >> 16 & 0xFF);
}

} // namespace

bool isRedLowest(const CopiedFrame& frame)
{
    return frame.format == WL_SHM_FORMAT_XBGR8888 || frame.format == WL_SHM_FORMAT_ABGR8888;
}

bool isUsable(const CopiedFrame& frame)
{
    const bool isBlueLowest =
        frame.format == WL_SHM_FORMAT_XRGB8888 || frame.format == WL_SHM_FORMAT_ARGB8888;
    return (isBlueLowest || isRedLowest(frame)) && frame.width > 0 && frame.width <= longestSide &&
           frame.height > 0 && frame.height <= longestSide && frame.stride % pixelSize == 0 &&
           frame.stride >= frame.width * pixelSize && frame.stride <= longestSide * pixelSize;
}

ScreenCopy::ScreenCopy(RunLoop& loop, Events events) : mLoop(loop), mEvents(std::move(events))
{
    const auto released = [&loop, life = std::weak_ptr(mLife), this] {
        loop.post(life, [this] { publish(); });
    };
    mScreen = std::make_shared<CapturedScreen>(released, true);
}

ScreenCopy::~ScreenCopy() { stop(); }

bool ScreenCopy::isPossible(const WaylandConnection& connection)
{
    const auto* manager = connection.find(zwlr_screencopy_manager_v1_interface);
    return connection.find(wl_shm_interface) && manager && manager->version >= 3;
}

void ScreenCopy::start(WaylandConnection& connection, wl_output* output)
{
    mManager = connection.bind<zwlr_screencopy_manager_v1>(
        *connection.find(zwlr_screencopy_manager_v1_interface),
        zwlr_screencopy_manager_v1_interface, 3);
    mShm = connection.bind<wl_shm>(*connection.find(wl_shm_interface), wl_shm_interface, 1);
    mOutput = output;
    request();
}

void ScreenCopy::stop()
{
    if (!mManager)
        return;
    endRequest();
    dropBuffer();
    wl_shm_destroy(std::exchange(mShm, nullptr));
    zwlr_screencopy_manager_v1_destroy(std::exchange(mManager, nullptr));
}

void ScreenCopy::restart()
{
    endRequest();
    dropBuffer();
    mScreen->setBuffer({}, nullptr);
    request();
}

const zwlr_screencopy_frame_v1_listener& ScreenCopy::frameEvents()
{
    using Frame = zwlr_screencopy_frame_v1;
    static constexpr auto self = [](void* data) -> auto&
    {
        return *static_cast<ScreenCopy*>(data);
    };
    static constexpr zwlr_screencopy_frame_v1_listener events{
        .buffer =
            [](void* data, Frame*, std::uint32_t format, std::uint32_t width, std::uint32_t height,
               std::uint32_t stride) {
                const CopiedFrame frame{format, width, height, stride};
                if (isUsable(frame))
                    self(data).mOffered = frame;
            },
        .flags =
            [](void* data, Frame*, std::uint32_t flags) {
                self(data).mIsUpsideDown = (flags & isUpsideDown) != 0;
            },
        .ready = [](void* data, Frame*, std::uint32_t, std::uint32_t,
                    std::uint32_t) { self(data).finish(); },
        .failed = [](void* data, Frame*) { self(data).retry(); },
        .damage = [](void* data, Frame*, std::uint32_t, std::uint32_t y, std::uint32_t,
                     std::uint32_t height) { self(data).noteDamage(y, height); },
        .linux_dmabuf = [](void*, Frame*, std::uint32_t, std::uint32_t, std::uint32_t) {},
        .buffer_done = [](void* data, Frame*) { self(data).beginCopy(); },
    };
    return events;
}

void ScreenCopy::request()
{
    if (!mManager || mFrame)
        return;
    mOffered.reset();
    mFrame = zwlr_screencopy_manager_v1_capture_output(mManager, true, mOutput);
    zwlr_screencopy_frame_v1_add_listener(mFrame, &frameEvents(), this);
}

void ScreenCopy::endRequest()
{
    if (mFrame)
        zwlr_screencopy_frame_v1_destroy(std::exchange(mFrame, nullptr));
}

void ScreenCopy::beginCopy()
{
    if (!mOffered || (*mOffered != mCopied && !makeBuffer(*mOffered)))
        return retry();
    if (mIsWhole)
        zwlr_screencopy_frame_v1_copy(mFrame, mBuffer);
    else
        zwlr_screencopy_frame_v1_copy_with_damage(mFrame, mBuffer);
}

bool ScreenCopy::makeBuffer(const CopiedFrame& frame)
{
    dropBuffer();
    FileDescriptor file;
    mMemory = sharedMemory(frame.size(), file);
    if (!mMemory)
        return false;
    auto* pool = wl_shm_create_pool(mShm, file.get(), static_cast<int>(frame.size()));
    mBuffer = wl_shm_pool_create_buffer(pool, 0, static_cast<int>(frame.width),
                                        static_cast<int>(frame.height),
                                        static_cast<int>(frame.stride), frame.format);
    wl_shm_pool_destroy(pool);
    mCopied = frame;
    mIsWhole = true;
    mFirst = mEnd = 0;
    return true;
}

void ScreenCopy::dropBuffer()
{
    mCopied = {};
    mHasNews = false;
    if (mBuffer)
        wl_buffer_destroy(std::exchange(mBuffer, nullptr));
    mMemory.reset();
}

void ScreenCopy::noteDamage(std::uint32_t y, std::uint32_t height)
{
    const auto first = std::min(y, mCopied.height);
    const auto end = first + std::min(height, mCopied.height - first);
    mFirst = mEnd == 0 ? first : std::min(mFirst, first);
    mEnd = std::max(mEnd, end);
}

void ScreenCopy::finish()
{
    endRequest();
    mFailures = 0;
    mHasNews = true;
    if (mIsWhole || mIsUpsideDown)
        noteDamage(0, mCopied.height);
    publish();
}

void ScreenCopy::retry()
{
    endRequest();
    if (++mFailures > mostFailures)
        return mLoop.post(mLife, mEvents.failed);
    mLoop.performAfterDelay(pause, mLife, [this] { request(); });
}

/// While a frame is out, what has been copied waits, and nothing else is.
void ScreenCopy::publish()
{
    if (!mHasNews || !mScreen->beginFrame())
        return;
    mHasNews = false;
    const int width = static_cast<int>(mCopied.width);
    const int height = static_cast<int>(mCopied.height);
    if (mIsWhole) {
        mPixels = std::make_shared<std::vector<std::uint32_t>>(mCopied.width * mCopied.height);
        mScreen->setBuffer({mPixels->data(), width, height, width}, mPixels);
    }
    auto damage = copyChangedRows(changedRows(), mPixels->data() + std::size_t{mFirst} * width);
    for (auto& band : damage)
        band.y = static_cast<std::int16_t>(band.y + mFirst);
    if (std::exchange(mIsWhole, false))
        damage = {pixelRect(0, 0, width, height)};
    mFirst = mEnd = 0;
    if (mScreen->endFrame(std::move(damage)))
        mLoop.post(mLife, mEvents.frameReady);
    request();
}

/// As they are in the compositor's copy.
FrameView ScreenCopy::changedRows()
{
    const int stride = static_cast<int>(mCopied.stride / pixelSize);
    const FrameView copy{mMemory.get(), static_cast<int>(mCopied.width),
                         static_cast<int>(mCopied.height), stride};
    const int count = static_cast<int>(mEnd - mFirst);
    const int top = static_cast<int>(mIsUpsideDown ? mCopied.height - mEnd : mFirst);
    if (isRedLowest(mCopied))
        std::transform(copy.row(top), copy.row(top + count),
                       mMemory.get() + std::ptrdiff_t{top} * stride, withRedAndBlueSwapped);
    if (mIsUpsideDown)
        return {copy.row(top + count - 1), copy.width, count, -stride};
    return {copy.row(top), copy.width, count, stride};
}

} // namespace farview
