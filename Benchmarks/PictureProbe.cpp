#include "Benchmarks/PictureProbe.h"

#include "Benchmarks/PictureRun.h"

#include <poll.h>
#include <xcb/damage.h>

#include <stdexcept>

namespace farview
{

PictureProbe::PictureProbe(const std::string& display)
    : mConnection(xcb_connect(display.c_str(), nullptr))
{
    auto* connection = mConnection.get();
    const auto* screen = screenOf(connection);
    const auto* damage = xcb_get_extension_data(connection, &xcb_damage_id);
    if (!screen || !damage || !damage->present)
        throw std::runtime_error("the display cannot tell what changes");
    mRoot = screen->root;
    mDamageEvent = damage->first_event;
    mDamage = xcb_generate_id(connection);
    std::free(xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1),
                                             nullptr));
    xcb_damage_create(connection, mDamage, mRoot, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_flush(connection);
}

bool PictureProbe::waitForChange(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!takeChange()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        pollfd descriptor{xcb_get_file_descriptor(mConnection.get()), POLLIN, 0};
        poll(&descriptor, 1, static_cast<int>(left.count()));
    }
    return true;
}

bool PictureProbe::takeChange()
{
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(mConnection.get())}) {
        if ((event->response_type & 0x7F) == mDamageEvent + XCB_DAMAGE_NOTIFY) {
            xcb_damage_subtract(mConnection.get(), mDamage, XCB_NONE, XCB_NONE);
            xcb_flush(mConnection.get());
            return true;
        }
    }
    return false;
}

std::vector<std::uint32_t> PictureProbe::read(const PixelRect& part)
{
    const auto width = static_cast<std::uint16_t>(part.width);
    const auto height = static_cast<std::uint16_t>(part.height);
    const auto cookie = xcb_get_image(mConnection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, mRoot, part.x,
                                      part.y, width, height, 0x00FFFFFF);
    const XReply<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(mConnection.get(), cookie, nullptr));
    if (!reply)
        return {};
    const auto* pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    return {pixels, pixels + std::size_t{width} * height};
}

std::optional<std::uint16_t> PictureProbe::number()
{
    const auto pixels = read(kMark);
    if (pixels.empty())
        return std::nullopt;
    return readMark({pixels.data(), kMark.width, kMark.height, kMark.width});
}

} // namespace farview
