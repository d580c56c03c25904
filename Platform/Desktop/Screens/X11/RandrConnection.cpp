#include "Platform/Desktop/Screens/X11/RandrConnection.h"

#include <sys/socket.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

namespace farview
{

/// Cuts a connection from another thread, so that whoever waits at it goes on.
class ConnectionBreaker
{
public:
    /// False when it has been cut before it was there.
    bool hold(int descriptor)
    {
        const std::lock_guard lock(mMutex);
        mDescriptor = descriptor;
        return !mIsBroken;
    }
    /// The descriptor is about to be closed: its number will be another file's.
    void release()
    {
        const std::lock_guard lock(mMutex);
        mDescriptor = -1;
    }
    void cut()
    {
        const std::lock_guard lock(mMutex);
        mIsBroken = true;
        if (mDescriptor >= 0)
            ::shutdown(mDescriptor, SHUT_RDWR);
    }

private:
    std::mutex mMutex;
    int mDescriptor = -1;
    bool mIsBroken = false;
};

namespace
{

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using Answer = std::unique_ptr<Reply, Free>;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// More than any machine has.
constexpr std::size_t mostParts = 256;

/// Whether a reply is as long as its own counts say. The library does not compare them.
template <typename Reply> bool holds(const Reply& reply, std::size_t bytes)
{
    constexpr std::size_t leastSize = 32;
    return bytes <= leastSize + std::size_t{4} * reply.length;
}

/// What a conversation's thread and the one who waits for it share.
struct Conversation {
    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;
    ConnectionBreaker breaker;

    void end()
    {
        const std::lock_guard lock(mutex);
        isOver = true;
        ended.notify_one();
    }
    bool isOverWithin(RandrConnection::Limit limit)
    {
        std::unique_lock lock(mutex);
        return ended.wait_for(lock, limit, [this] { return isOver; });
    }
};

/// Threads that are made in its scope take no signals: those are the program's own affair, and a
/// server that has gone is an error and not the end of the process.
class WithoutSignals
{
public:
    WithoutSignals()
    {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &mBefore);
    }
    ~WithoutSignals() { ::pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t mBefore{};
};

/// The root window of the first screen; 0 when the server described none.
xcb_window_t rootOf(xcb_connection_t* connection)
{
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const auto* screen = xcb_setup_roots_iterator(setup).data;
    const auto* bytes = reinterpret_cast<const char*>(setup);
    const auto* end = bytes + 8 + std::size_t{4} * setup->length;
    const bool isInside = reinterpret_cast<const char*>(screen + 1) <= end;
    return setup->roots_len > 0 && isInside ? screen->root : 0;
}

/// As screens of 96 points per inch would have it, which is what programs expect.
std::uint32_t millimetres(int pixels)
{
    return static_cast<std::uint32_t>((pixels * 254 + 480) / 960);
}

template <typename Number> std::vector<RandrNumber> numbers(const Number* first, std::size_t count)
{
    return {first, first + count};
}

} // namespace

struct RandrConnection::Server {
    ConnectionBreaker& breaker;
    std::unique_ptr<xcb_connection_t, Disconnect> connection;
    xcb_window_t root = 0;
    /// False where nothing may be asked.
    bool isUsable = false;

    Server(const std::string& display, ConnectionBreaker& breaker);
    ~Server() { breaker.release(); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    bool hasRandr();
    bool readSizes(RandrLayout& layout);
    bool readResources(RandrLayout& layout);
    bool readCrtcs(RandrLayout& layout);
    bool readOutputs(RandrLayout& layout);
    bool resize(RandrSize size);
    bool apply(const RandrCrtc& crtc, std::uint32_t timestamp);
};

RandrConnection::Server::Server(const std::string& display, ConnectionBreaker& breaker)
    : breaker(breaker), connection(xcb_connect(display.c_str(), nullptr))
{
    auto* server = connection.get();
    if (xcb_connection_has_error(server) != 0 || !breaker.hold(xcb_get_file_descriptor(server)))
        return;
    root = rootOf(server);
    isUsable = root != 0 && hasRandr();
}

bool RandrConnection::Server::hasRandr()
{
    auto* server = connection.get();
    const auto* extension = xcb_get_extension_data(server, &xcb_randr_id);
    if (!extension || !extension->present)
        return false;
    const Answer<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(server, xcb_randr_query_version(server, 1, 3), nullptr));
    return version && (version->major_version > 1 ||
                       (version->major_version == 1 && version->minor_version >= 3));
}

bool RandrConnection::Server::readSizes(RandrLayout& layout)
{
    auto* server = connection.get();
    const auto geometryCookie = xcb_get_geometry(server, root);
    const auto rangeCookie = xcb_randr_get_screen_size_range(server, root);
    const auto primaryCookie = xcb_randr_get_output_primary(server, root);
    const Answer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(server, geometryCookie, nullptr));
    const Answer<xcb_randr_get_screen_size_range_reply_t> range(
        xcb_randr_get_screen_size_range_reply(server, rangeCookie, nullptr));
    const Answer<xcb_randr_get_output_primary_reply_t> primary(
        xcb_randr_get_output_primary_reply(server, primaryCookie, nullptr));
    if (!geometry || !range || !primary)
        return false;
    layout.size = {geometry->width, geometry->height};
    layout.largestSize = {range->max_width, range->max_height};
    layout.primary = primary->output;
    return true;
}

bool RandrConnection::Server::readResources(RandrLayout& layout)
{
    const auto cookie = xcb_randr_get_screen_resources_current(connection.get(), root);
    const Answer<xcb_randr_get_screen_resources_current_reply_t> found(
        xcb_randr_get_screen_resources_current_reply(connection.get(), cookie, nullptr));
    if (!found || found->num_crtcs > mostParts || found->num_outputs > mostParts)
        return false;
    const std::size_t lists = 4 * (std::size_t{found->num_crtcs} + found->num_outputs);
    if (!holds(*found, sizeof *found + lists + sizeof(xcb_randr_mode_info_t) * found->num_modes))
        return false;
    const auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(found.get());
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(found.get());
    const auto* modes = xcb_randr_get_screen_resources_current_modes(found.get());
    layout.timestamp = found->config_timestamp;
    for (std::size_t index = 0; index < found->num_crtcs; ++index)
        layout.crtcs.emplace_back().id = crtcs[index];
    for (std::size_t index = 0; index < found->num_outputs; ++index)
        layout.outputs.emplace_back().id = outputs[index];
    for (std::size_t index = 0; index < found->num_modes; ++index)
        layout.modes.push_back({modes[index].id, modes[index].width, modes[index].height});
    return true;
}

bool RandrConnection::Server::readCrtcs(RandrLayout& layout)
{
    std::vector<xcb_randr_get_crtc_info_cookie_t> cookies;
    for (const auto& crtc : layout.crtcs)
        cookies.push_back(xcb_randr_get_crtc_info(connection.get(), crtc.id, layout.timestamp));
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        const Answer<xcb_randr_get_crtc_info_reply_t> found(
            xcb_randr_get_crtc_info_reply(connection.get(), cookies[index], nullptr));
        if (!found || !holds(*found, sizeof *found + std::size_t{4} * found->num_outputs))
            return false;
        RandrCrtc& crtc = layout.crtcs[index];
        crtc.x = found->x;
        crtc.y = found->y;
        crtc.width = found->width;
        crtc.height = found->height;
        crtc.mode = found->mode;
        crtc.rotation = found->rotation;
        crtc.outputs = numbers(xcb_randr_get_crtc_info_outputs(found.get()), found->num_outputs);
    }
    return true;
}

bool RandrConnection::Server::readOutputs(RandrLayout& layout)
{
    std::vector<xcb_randr_get_output_info_cookie_t> cookies;
    for (const auto& output : layout.outputs)
        cookies.push_back(xcb_randr_get_output_info(connection.get(), output.id, layout.timestamp));
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        const Answer<xcb_randr_get_output_info_reply_t> found(
            xcb_randr_get_output_info_reply(connection.get(), cookies[index], nullptr));
        if (!found || !holds(*found, sizeof *found + std::size_t{4} * found->num_crtcs +
                                         std::size_t{4} * found->num_modes))
            return false;
        RandrOutput& output = layout.outputs[index];
        output.crtc = found->crtc;
        output.crtcs = numbers(xcb_randr_get_output_info_crtcs(found.get()), found->num_crtcs);
        output.modes = numbers(xcb_randr_get_output_info_modes(found.get()), found->num_modes);
    }
    return true;
}

bool RandrConnection::Server::resize(RandrSize size)
{
    const auto cookie = xcb_randr_set_screen_size_checked(
        connection.get(), root, static_cast<std::uint16_t>(size.width),
        static_cast<std::uint16_t>(size.height), millimetres(size.width), millimetres(size.height));
    const Answer<xcb_generic_error_t> error(xcb_request_check(connection.get(), cookie));
    return !error && xcb_connection_has_error(connection.get()) == 0;
}

bool RandrConnection::Server::apply(const RandrCrtc& crtc, std::uint32_t timestamp)
{
    const auto cookie = xcb_randr_set_crtc_config(
        connection.get(), crtc.id, XCB_CURRENT_TIME, timestamp, static_cast<std::int16_t>(crtc.x),
        static_cast<std::int16_t>(crtc.y), crtc.mode, crtc.rotation,
        static_cast<std::uint32_t>(crtc.outputs.size()), crtc.outputs.data());
    const Answer<xcb_randr_set_crtc_config_reply_t> result(
        xcb_randr_set_crtc_config_reply(connection.get(), cookie, nullptr));
    return result && result->status == XCB_RANDR_SET_CONFIG_SUCCESS;
}

RandrConnection::RandrConnection(const std::string& display, ConnectionBreaker& breaker)
    : mServer(std::make_unique<Server>(display, breaker))
{
}

RandrConnection::~RandrConnection() = default;

bool RandrConnection::converse(Limit limit, std::function<void(RandrConnection&)> conversation)
{
    const char* variable = std::getenv("DISPLAY");
    const auto shared = std::make_shared<Conversation>();
    const auto talk = [=, display = std::string(variable ? variable : "")] {
        try {
            RandrConnection server(display, shared->breaker);
            conversation(server);
        } catch (const std::exception&) {
            // No memory: there is no result.
        }
        shared->end();
    };
    try {
        const WithoutSignals scope;
        std::thread(talk).detach();
    } catch (const std::exception&) {
        return false;
    }
    if (shared->isOverWithin(limit))
        return true;
    shared->breaker.cut();
    return false;
}

void RandrConnection::keepOthersOut()
{
    if (mServer->isUsable)
        xcb_grab_server(mServer->connection.get());
}

std::optional<RandrLayout> RandrConnection::layout()
{
    RandrLayout layout;
    if (!mServer->isUsable || !mServer->readSizes(layout) || !mServer->readResources(layout) ||
        !mServer->readCrtcs(layout) || !mServer->readOutputs(layout))
        return std::nullopt;
    return layout;
}

bool RandrConnection::change(const RandrLayout& from, const RandrLayout& to)
{
    std::vector<std::pair<RandrCrtc, RandrCrtc>> changes;
    for (std::size_t index = 0; index < to.crtcs.size(); ++index) {
        if (from.crtcs[index] != to.crtcs[index])
            changes.emplace_back(from.crtcs[index], to.crtcs[index]);
    }
    // An output leaves one part of the screen before it joins another.
    std::stable_partition(changes.begin(), changes.end(), [](const auto& change) {
        return change.second.outputs.size() < change.first.outputs.size();
    });
    const auto needed = neededSize(to);
    const RandrSize both = {std::max(from.size.width, needed.width),
                            std::max(from.size.height, needed.height)};
    bool isDone = both == from.size || mServer->resize(both);
    std::size_t done = 0;
    while (isDone && done < changes.size())
        isDone = mServer->apply(changes[done++].second, to.timestamp);
    while (!isDone && done > 0)
        mServer->apply(changes[--done].first, to.timestamp);
    const auto last = isDone ? needed : from.size;
    // Nobody misses the rest of the screen that is too large, so this may fail.
    if (last != both)
        mServer->resize(last);
    return isDone;
}

} // namespace farview
