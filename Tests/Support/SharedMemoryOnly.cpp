// Loaded into the portal of sway. Without a graphics device sway has pictures in shared memory
// only. That portal would send those, but begins only where it hears that there are others, too.
#include <dlfcn.h>
#include <wayland-client.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace
{

using Callback = void (*)();
using Buffer = void (*)(void*, wl_proxy*, std::uint32_t, std::uint32_t, std::uint32_t,
                        std::uint32_t);
using GraphicsBuffer = void (*)(void*, wl_proxy*, std::uint32_t, std::uint32_t, std::uint32_t);

// In the order of the protocol's events.
constexpr std::size_t buffer = 0;
constexpr std::size_t graphicsBuffer = 5;
using Callbacks = std::array<Callback, 7>;

constexpr std::uint32_t formatXR24 = 0x34325258;

Callbacks theirs;

void tellBuffer(void* data, wl_proxy* frame, std::uint32_t format, std::uint32_t width,
                std::uint32_t height, std::uint32_t stride)
{
    reinterpret_cast<GraphicsBuffer>(theirs[graphicsBuffer])(data, frame, formatXR24, width,
                                                             height);
    reinterpret_cast<Buffer>(theirs[buffer])(data, frame, format, width, height, stride);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int
wl_proxy_add_listener(wl_proxy* proxy, Callback* callbacks, void* data)
{
    static const auto next =
        reinterpret_cast<decltype(&wl_proxy_add_listener)>(::dlsym(RTLD_NEXT, __func__));
    static Callbacks ours;
    if (std::strcmp(wl_proxy_get_class(proxy), "zwlr_screencopy_frame_v1") != 0)
        return next(proxy, callbacks, data);
    std::copy_n(callbacks, theirs.size(), theirs.begin());
    ours = theirs;
    ours[buffer] = reinterpret_cast<Callback>(tellBuffer);
    return next(proxy, ours.data(), data);
}
