#include "Platform/Desktop/Screens/X11/RootCapture.h"

#include "Platform/Posix/FileDescriptor.h"

#include <sys/mman.h>
#include <xcb/damage.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <bit>

namespace farview
{
namespace
{

/// The highest byte of a pixel is whatever its painter left there; frames have 0.
constexpr std::uint32_t colours = 0x00FFFFFF;

bool hasExtension(xcb_connection_t* connection, xcb_extension_t* extension)
{
    const auto* found = xcb_get_extension_data(connection, extension);
    return found && found->present;
}

/// Extensions refuse everything to who did not ask for their version.
bool hasVersions(xcb_connection_t* connection)
{
    const auto damageCookie = xcb_damage_query_version(connection, 1, 1);
    const auto fixesCookie = xcb_xfixes_query_version(connection, 5, 0);
    const auto memoryCookie = xcb_shm_query_version(connection);
    const XReply<xcb_damage_query_version_reply_t> damage(
        xcb_damage_query_version_reply(connection, damageCookie, nullptr));
    const XReply<xcb_xfixes_query_version_reply_t> fixes(
        xcb_xfixes_query_version_reply(connection, fixesCookie, nullptr));
    const XReply<xcb_shm_query_version_reply_t> memory(
        xcb_shm_query_version_reply(connection, memoryCookie, nullptr));
    const bool takesFiles = memory && (memory->major_version > 1 || memory->minor_version >= 2);
    return damage && fixes && takesFiles;
}

bool hasFourBytePixels(xcb_connection_t* connection, std::uint8_t depth)
{
    const auto* setup = xcb_get_setup(connection);
    const auto* format = xcb_setup_pixmap_formats(setup);
    const bool isNative = (setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) ==
                          (std::endian::native == std::endian::little);
    return isNative && (depth == 24 || depth == 32) &&
           std::any_of(format, format + setup->pixmap_formats_len, [&](const auto& each) {
               return each.depth == depth && each.bits_per_pixel == 32;
           });
}

/// Memory without a name that ends with whoever holds it; a descriptor for the server beside it.
std::shared_ptr<void> sharedMemory(std::size_t size, int& descriptor)
{
    descriptor = ::memfd_create("frames", MFD_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    void* memory = MAP_FAILED;
    if (::ftruncate(descriptor, static_cast<off_t>(size)) == 0)
        memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (memory != MAP_FAILED)
        return {memory, [size](void* mapped) { ::munmap(mapped, size); }};
    ::close(descriptor);
    return nullptr;
}

/// What of a rectangle of the root window lies in the part, in the part's coordinates.
PixelRect clipped(const xcb_rectangle_t& rectangle, const PixelRect& part)
{
    const int left = std::max<int>(rectangle.x, part.x);
    const int top = std::max<int>(rectangle.y, part.y);
    const int right = std::min(rectangle.x + rectangle.width, part.x + part.width);
    const int bottom = std::min(rectangle.y + rectangle.height, part.y + part.height);
    return pixelRect(left - part.x, top - part.y, std::max(0, right - left),
                     std::max(0, bottom - top));
}

} // namespace

std::vector<RowBand> bandsOf(std::span<const PixelRect> damage)
{
    std::vector<PixelRect> sorted(damage.begin(), damage.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const auto& left, const auto& right) { return left.y < right.y; });
    std::vector<RowBand> bands;
    for (const auto& part : sorted) {
        if (bands.empty() || bands.back().first + bands.back().count < part.y)
            bands.push_back({part.y, 0});
        auto& band = bands.back();
        band.count = std::max(band.count, part.y + part.height - band.first);
    }
    return bands;
}

bool RootCapture::isPossible(const RandrServer& server)
{
    auto* connection = server.connection();
    return hasExtension(connection, &xcb_shm_id) && hasExtension(connection, &xcb_damage_id) &&
           hasExtension(connection, &xcb_xfixes_id) && hasVersions(connection) &&
           hasFourBytePixels(connection, screenOf(connection)->root_depth);
}

RootCapture::RootCapture(RandrServer& server)
    : mServer(server), mDamage(xcb_generate_id(server.connection())),
      mRegion(xcb_generate_id(server.connection()))
{
    auto* connection = server.connection();
    mDamageEvent = xcb_get_extension_data(connection, &xcb_damage_id)->first_event;
    xcb_damage_create(connection, mDamage, server.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(connection, mRegion, 0, nullptr);
}

RootCapture::~RootCapture()
{
    xcb_damage_destroy(mServer.connection(), mDamage);
    xcb_xfixes_destroy_region(mServer.connection(), mRegion);
    if (mSegment != 0)
        xcb_shm_detach(mServer.connection(), mSegment);
}

bool RootCapture::begin(const PixelRect& part)
{
    auto* connection = mServer.connection();
    if (mSegment != 0)
        xcb_shm_detach(connection, mSegment);
    int descriptor = -1;
    const auto pixels = static_cast<std::size_t>(part.width) * part.height;
    mMemory = sharedMemory(pixels * sizeof(std::uint32_t), descriptor);
    if (!mMemory)
        return false;
    mSegment = xcb_generate_id(connection);
    // The library closes the descriptor.
    const auto cookie = xcb_shm_attach_fd_checked(connection, mSegment, descriptor, 0);
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    mPart = part;
    mView = {static_cast<const std::uint32_t*>(mMemory.get()), part.width, part.height, part.width};
    mIsWhole = true;
    return !error && xcb_connection_has_error(connection) == 0;
}

bool RootCapture::isDamage(const xcb_generic_event_t& event) const
{
    return (event.response_type & 0x7F) == mDamageEvent + XCB_DAMAGE_NOTIFY;
}

std::optional<std::vector<PixelRect>> RootCapture::capture()
{
    auto damage = takeDamage();
    if (mIsWhole)
        damage = {pixelRect(0, 0, mPart.width, mPart.height)};
    mIsWhole = !read(bandsOf(damage));
    if (mIsWhole)
        return std::nullopt;
    return damage;
}

/// Before the pixels are read: what changes in between is damage again.
std::vector<PixelRect> RootCapture::takeDamage()
{
    auto* connection = mServer.connection();
    xcb_damage_subtract(connection, mDamage, XCB_NONE, mRegion);
    const auto cookie = xcb_xfixes_fetch_region(connection, mRegion);
    const XReply<xcb_xfixes_fetch_region_reply_t> reply(
        xcb_xfixes_fetch_region_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    const auto* first = xcb_xfixes_fetch_region_rectangles(reply.get());
    const auto count = xcb_xfixes_fetch_region_rectangles_length(reply.get());
    std::vector<PixelRect> damage;
    for (int index = 0; index < count; ++index) {
        const auto part = clipped(first[index], mPart);
        if (part.width > 0 && part.height > 0)
            damage.push_back(part);
    }
    return damage;
}

/// Whole rows, because their pixels land where they belong in the frame; all requests at once.
bool RootCapture::read(const std::vector<RowBand>& bands)
{
    auto* connection = mServer.connection();
    std::vector<xcb_shm_get_image_cookie_t> cookies;
    for (const auto& band : bands) {
        const auto offset = static_cast<std::uint32_t>(band.first) * mView.stride * 4;
        cookies.push_back(xcb_shm_get_image(
            connection, mServer.root(), mPart.x, static_cast<std::int16_t>(mPart.y + band.first),
            static_cast<std::uint16_t>(mPart.width), static_cast<std::uint16_t>(band.count),
            colours, XCB_IMAGE_FORMAT_Z_PIXMAP, mSegment, offset));
    }
    bool isRead = true;
    for (const auto& cookie : cookies) {
        const XReply<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(connection, cookie, nullptr));
        isRead = isRead && reply;
    }
    return isRead;
}

} // namespace farview
