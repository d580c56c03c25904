#pragma once

#include <xcb/xcb.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <vector>

namespace farview
{

struct FreeXReply {
    void operator()(void* memory) const { std::free(memory); }
};
/// What a server answered; null when it refused or has gone.
template <typename Reply> using XReply = std::unique_ptr<Reply, FreeXReply>;

struct DisconnectX {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XConnection = std::unique_ptr<xcb_connection_t, DisconnectX>;
/// Connects to a server, from any thread; null: to the one that $DISPLAY names.
XConnection connectX(const char* display);

/// Cuts a connection from another thread, so that whoever waits at it goes on.
class ConnectionBreaker
{
public:
    /// Cuts it at once when `cut` came before it was there.
    void hold(int descriptor);
    /// The descriptor is about to be closed: its number will be another file's.
    void release();
    void cut();

private:
    std::mutex mMutex;
    int mDescriptor = -1;
    bool mIsBroken = false;
};

/// Lets the connection be cut for as long as it lives; outlived by the connection.
class BreakerHold
{
public:
    BreakerHold(ConnectionBreaker& breaker, xcb_connection_t* connection) : mBreaker(breaker)
    {
        mBreaker.hold(xcb_get_file_descriptor(connection));
    }
    ~BreakerHold() { mBreaker.release(); }
    BreakerHold(const BreakerHold&) = delete;
    BreakerHold& operator=(const BreakerHold&) = delete;

private:
    ConnectionBreaker& mBreaker;
};

/// Nobody else changes anything while it lives. The end of an inner one ends the outer ones, too.
class ServerGrab
{
public:
    explicit ServerGrab(xcb_connection_t* connection) : mConnection(connection)
    {
        xcb_grab_server(mConnection);
    }
    ~ServerGrab()
    {
        xcb_ungrab_server(mConnection);
        xcb_flush(mConnection);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* mConnection;
};

/// Threads that are made in its scope take no signals: those are the program's own affair, and a
/// server that has gone is an error and not the end of the process.
class WithoutSignals
{
public:
    WithoutSignals();
    ~WithoutSignals();
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t mBefore{};
};

/// The first screen; null when the server has gone or described none.
const xcb_screen_t* screenOf(xcb_connection_t* connection);

/// 0 when the server has gone.
xcb_atom_t atomNamed(xcb_connection_t* connection, std::string_view name);

/// Whether a reply is as long as its own counts say. The library does not compare them.
template <typename Reply> bool holds(const Reply& reply, std::size_t bytes)
{
    constexpr std::size_t leastSize = 32;
    return bytes <= leastSize + std::size_t{4} * reply.length;
}

/// The numbers of a property that was asked for; none when there is none, or of another kind.
std::vector<std::uint32_t> numbersOf(xcb_connection_t* connection,
                                     xcb_get_property_cookie_t cookie);

} // namespace farview
