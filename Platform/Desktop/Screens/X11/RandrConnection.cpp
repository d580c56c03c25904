#include "Platform/Desktop/Screens/X11/RandrConnection.h"

#include "Platform/Desktop/Screens/X11/RandrServer.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

namespace farview
{
namespace
{

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

/// As screens of 96 points per inch would have it, which is what programs expect.
int millimetres(int pixels) { return (pixels * 254 + 480) / 960; }

} // namespace

struct RandrConnection::Server {
    XConnection connection;
    BreakerHold hold;
    RandrServer randr;

    Server(const std::string& display, ConnectionBreaker& breaker)
        : connection(connectX(display.c_str())), hold(breaker, connection.get()),
          randr(connection.get())
    {
    }

    bool resize(RandrSize size)
    {
        return randr.setScreenSize(size, {millimetres(size.width), millimetres(size.height)});
    }
};

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
    if (mServer->randr.isUsable())
        xcb_grab_server(mServer->connection.get());
}

std::optional<RandrLayout> RandrConnection::layout() { return mServer->randr.layout(); }

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
        isDone = mServer->randr.apply(changes[done++].second, to.timestamp);
    while (!isDone && done > 0)
        mServer->randr.apply(changes[--done].first, to.timestamp);
    const auto last = isDone ? needed : from.size;
    // Nobody misses the rest of the screen that is too large, so this may fail.
    if (last != both)
        mServer->resize(last);
    return isDone;
}

} // namespace farview
