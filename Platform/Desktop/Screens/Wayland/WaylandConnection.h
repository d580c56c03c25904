#pragma once

#include "Platform/Types/Observers.h"

#include <QObject>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct wl_callback;
struct wl_callback_listener;
struct wl_display;
struct wl_interface;
struct wl_registry;
struct wl_registry_listener;

class QSocketNotifier;

namespace farview
{

/// Something that a compositor offers to all programs.
struct WaylandGlobal {
    std::uint32_t name = 0; ///< the compositor's number for it
    std::string interface;
    std::uint32_t version = 0;
};

/// A connection to the session's compositor, apart from that of the toolkit. Reads and writes
/// whenever the loop is about to wait; nothing blocks. Main thread only; the application object
/// must exist.
class WaylandConnection : public QObject
{
public:
    /// All on a later turn. Only `lost` may destroy the connection.
    struct Events {
        std::function<void()> ready; ///< `globals` is complete
        std::function<void(const WaylandGlobal& global)> added = [](auto&) {};
        std::function<void(std::uint32_t name)> removed = [](auto) {};
        std::function<void()> lost; ///< or there is no compositor; nothing follows
    };

    explicit WaylandConnection(Events events);
    ~WaylandConnection() override;

    /// What is there now.
    const std::vector<WaylandGlobal>& globals() const { return mGlobals; }
    /// Null where no global has that interface.
    const WaylandGlobal* find(const wl_interface& interface) const;
    /// The global, as the interface's proxy type; of `version`, or older where the compositor is.
    /// Whoever binds it destroys it before the connection goes.
    template <typename Proxy>
    Proxy* bind(const WaylandGlobal& global, const wl_interface& interface, std::uint32_t version)
    {
        return static_cast<Proxy*>(bindAny(global, interface, version));
    }
    /// Calls `then` when the compositor has done everything that it was asked before; never after
    /// the end of the connection.
    void afterAll(std::function<void()> then);
    /// Sends now what was asked for, as far as the compositor takes it.
    void flush();
    /// The compositor has not taken everything yet. Who goes on asking loses it.
    bool isFull() const;
    /// Told whenever it is not full any more.
    Observers<>& drained() { return mDrained; }

private:
    struct Disconnect {
        void operator()(wl_display* display) const;
    };

    static const wl_registry_listener& registryEvents();
    static const wl_callback_listener& answerEvents();
    void* bindAny(const WaylandGlobal& global, const wl_interface& interface,
                  std::uint32_t version);
    void begin();
    void read();
    void dispatch();
    void lose();

    Events mEvents;
    Observers<> mDrained;
    std::vector<WaylandGlobal> mGlobals;
    std::unique_ptr<wl_display, Disconnect> mDisplay;
    wl_registry* mRegistry = nullptr;
    std::deque<std::pair<wl_callback*, std::function<void()>>> mWaiting; ///< answered in order
    std::unique_ptr<QSocketNotifier> mReadable;
    std::unique_ptr<QSocketNotifier> mWritable;
    bool mIsReady = false;
    bool mIsLost = false;
};

} // namespace farview
