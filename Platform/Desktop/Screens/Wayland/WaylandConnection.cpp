#include "Platform/Desktop/Screens/Wayland/WaylandConnection.h"

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>
#include <QTimer>

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace farview
{

void WaylandConnection::Disconnect::operator()(wl_display* display) const
{
    wl_display_disconnect(display);
}

WaylandConnection::WaylandConnection(Events events)
    : mEvents(std::move(events)), mDisplay(wl_display_connect(nullptr))
{
    if (mDisplay)
        begin();
    else
        lose();
}

WaylandConnection::~WaylandConnection()
{
    for (const auto& [callback, then] : mWaiting)
        wl_callback_destroy(callback);
    if (mRegistry)
        wl_registry_destroy(mRegistry);
}

const wl_registry_listener& WaylandConnection::registryEvents()
{
    static constexpr wl_registry_listener events{
        .global =
            [](void* data, wl_registry*, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                auto& self = *static_cast<WaylandConnection*>(data);
                const auto& global = self.mGlobals.emplace_back(name, interface, version);
                if (self.mIsReady)
                    self.mEvents.added(WaylandGlobal(global));
            },
        .global_remove =
            [](void* data, wl_registry*, std::uint32_t name) {
                auto& self = *static_cast<WaylandConnection*>(data);
                std::erase_if(self.mGlobals, [name](auto& global) { return global.name == name; });
                self.mEvents.removed(name);
            },
    };
    return events;
}

void WaylandConnection::begin()
{
    const int descriptor = wl_display_get_fd(mDisplay.get());
    mReadable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    mWritable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    mWritable->setEnabled(false);
    connect(mReadable.get(), &QSocketNotifier::activated, this, &WaylandConnection::read);
    connect(mWritable.get(), &QSocketNotifier::activated, this, &WaylandConnection::flush);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &WaylandConnection::flush);
    mRegistry = wl_display_get_registry(mDisplay.get());
    wl_registry_add_listener(mRegistry, &registryEvents(), this);
    afterAll([this] {
        mIsReady = true;
        mEvents.ready();
    });
}

void WaylandConnection::read()
{
    while (!mIsLost && wl_display_prepare_read(mDisplay.get()) != 0)
        dispatch();
    if (mIsLost)
        return;
    if (wl_display_read_events(mDisplay.get()) < 0)
        lose();
    else
        dispatch();
}

void WaylandConnection::dispatch()
{
    if (wl_display_dispatch_pending(mDisplay.get()) < 0)
        lose();
}

void WaylandConnection::flush()
{
    if (!mDisplay || mIsLost)
        return;
    // A compositor that stands still reads later.
    const bool wasFull = isFull();
    mWritable->setEnabled(wl_display_flush(mDisplay.get()) < 0 && errno == EAGAIN);
    if (wasFull && !isFull())
        mDrained.tell();
}

bool WaylandConnection::isFull() const { return mWritable && mWritable->isEnabled(); }

/// Reading finds out, too, when writing fails.
void WaylandConnection::lose()
{
    if (std::exchange(mIsLost, true))
        return;
    mReadable.reset();
    mWritable.reset();
    QTimer::singleShot(0, this, [this] { mEvents.lost(); });
}

const WaylandGlobal* WaylandConnection::find(const wl_interface& interface) const
{
    const auto found = std::find_if(mGlobals.begin(), mGlobals.end(), [&](const auto& global) {
        return global.interface == interface.name;
    });
    return found == mGlobals.end() ? nullptr : &*found;
}

void* WaylandConnection::bindAny(const WaylandGlobal& global, const wl_interface& interface,
                                 std::uint32_t version)
{
    return wl_registry_bind(mRegistry, global.name, &interface, std::min(version, global.version));
}

const wl_callback_listener& WaylandConnection::answerEvents()
{
    static constexpr wl_callback_listener events{
        .done = [](void* data, wl_callback* callback, std::uint32_t) {
            auto& waiting = static_cast<WaylandConnection*>(data)->mWaiting;
            const auto then = std::move(waiting.front().second);
            waiting.pop_front();
            wl_callback_destroy(callback);
            then();
        }};
    return events;
}

void WaylandConnection::afterAll(std::function<void()> then)
{
    if (mIsLost)
        return;
    auto* callback = wl_display_sync(mDisplay.get());
    wl_callback_add_listener(callback, &answerEvents(), this);
    mWaiting.emplace_back(callback, std::move(then));
}

} // namespace farview
