#include "Platform/Desktop/Screens/X11/XConnection.h"

#include <sys/socket.h>

namespace farview
{

XConnection connectX(const char* display)
{
    // One thread at a time: the library that reads the key's file shares its path among them.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    return XConnection(xcb_connect(display, nullptr));
}

void ConnectionBreaker::hold(int descriptor)
{
    const std::lock_guard lock(mMutex);
    mDescriptor = descriptor;
    if (mIsBroken && descriptor >= 0)
        ::shutdown(descriptor, SHUT_RDWR);
}

void ConnectionBreaker::release()
{
    const std::lock_guard lock(mMutex);
    mDescriptor = -1;
}

void ConnectionBreaker::cut()
{
    const std::lock_guard lock(mMutex);
    mIsBroken = true;
    if (mDescriptor >= 0)
        ::shutdown(mDescriptor, SHUT_RDWR);
}

WithoutSignals::WithoutSignals()
{
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &mBefore);
}

WithoutSignals::~WithoutSignals() { ::pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }

const xcb_screen_t* screenOf(xcb_connection_t* connection)
{
    if (xcb_connection_has_error(connection) != 0)
        return nullptr;
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const auto* screen = xcb_setup_roots_iterator(setup).data;
    const auto* bytes = reinterpret_cast<const char*>(setup);
    const auto* end = bytes + 8 + std::size_t{4} * setup->length;
    const bool isInside = reinterpret_cast<const char*>(screen + 1) <= end;
    return setup->roots_len > 0 && isInside ? screen : nullptr;
}

xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name)
{
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : 0;
}

std::vector<std::uint32_t> numbersOf(xcb_connection_t* connection, xcb_get_property_cookie_t cookie)
{
    const XReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32 ||
        !holds(*reply, sizeof *reply + std::size_t{4} * reply->value_len))
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

} // namespace farview
