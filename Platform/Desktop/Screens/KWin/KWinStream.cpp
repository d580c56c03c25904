#include "Platform/Desktop/Screens/KWin/KWinStream.h"

#include <wayland-client.h>
#include <wayland-protocols/zkde-screencast-unstable-v1.h>

#include <utility>

namespace farview
{

void KWinStream::Close::operator()(zkde_screencast_stream_unstable_v1* stream) const
{
    zkde_screencast_stream_unstable_v1_close(stream);
}

/// Scaled afterwards: KWin multiplies the size by the scale, and would round it.
KWinStream::KWinStream(RunLoop& loop, zkde_screencast_unstable_v1& maker, Wish wish,
                       std::function<void()> begun, PipeWireStream::Events events)
    : mWish(std::move(wish)), mBegun(std::move(begun)), mEnded(events.ended),
      mStream(zkde_screencast_unstable_v1_stream_virtual_output(
          &maker, mWish.name.c_str(), mWish.width, mWish.height, wl_fixed_from_int(1),
          ZKDE_SCREENCAST_UNSTABLE_V1_POINTER_METADATA)),
      mPixels(loop, std::move(events))
{
    using Stream = zkde_screencast_stream_unstable_v1;
    static const auto handlers = [] {
        zkde_screencast_stream_unstable_v1_listener all{};
        all.closed = [](void* data, Stream*) {
            static_cast<KWinStream*>(data)->mEnded(ScreenObstacle::takenAway);
        };
        all.created = [](void* data, Stream*, std::uint32_t node) {
            static_cast<KWinStream*>(data)->begin(node);
        };
        all.failed = [](void* data, Stream*, const char*) {
            static_cast<KWinStream*>(data)->mEnded(ScreenObstacle::failed);
        };
        return all;
    }();
    zkde_screencast_stream_unstable_v1_add_listener(mStream.get(), &handlers, this);
}

void KWinStream::begin(std::uint32_t node)
{
    if (std::exchange(mHasBegun, true))
        return;
    mPixels.connect({node}, mWish.width, mWish.height);
    mPixels.show(mWish.width, mWish.height, false);
    mBegun();
}

} // namespace farview
