#pragma once

#include "Platform/Desktop/Screens/X11/InputDevices.h"
#include "Platform/Desktop/Screens/X11/XConnection.h"
#include "Platform/InputSink.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Types/PixelRect.h"
#include "Platform/VirtualScreens.h"

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace farview
{

class X11Input;

/// Input on its way to the thread that talks to the X server. Any thread.
class X11InputOrders
{
public:
    using Order = std::function<void(X11Input&)>;
    struct Taken {
        std::optional<PixelRect> area; ///< of the monitor, as it is now
        std::deque<Order> orders;
        bool isLast = false; ///< nothing follows
    };

    X11InputOrders();

    /// A server that takes none of them for long gets none of them, and everything is released.
    void give(Order order);
    void setArea(const std::optional<PixelRect>& area);
    void end();

    /// Readable as long as there is something to take.
    int descriptor() const { return mDescriptor.get(); }
    Taken take();

private:
    void change(const std::function<void()>& change);

    FileDescriptor mDescriptor;
    std::mutex mMutex;
    Taken mTaken;
};

/// Input at one monitor of the X server that $DISPLAY names.
class X11InputSink final : public InputSink
{
public:
    explicit X11InputSink(MakeInputDevices makeDevices);
    /// Waits until everything is released, but not for a server that does not answer.
    ~X11InputSink() override;
    X11InputSink(const X11InputSink&) = delete;
    X11InputSink& operator=(const X11InputSink&) = delete;

    /// Is to hear on any thread, in order, what the monitor's delegate hears; may outlive the sink.
    std::shared_ptr<VirtualScreenDelegate> follower() const { return mFollower; }

    /// Before the monitor changes.
    void releaseAll();

    InputAbilities abilities() const override { return mAbilities; }
    void movePointer(const InputPlace& place) override;
    void button(PointerButton button, bool isDown) override;
    void wheel(double right, double down) override;
    void touch(const TouchPoint& point) override;
    void pen(const PenState& state) override;
    void key(std::uint16_t code, bool isDown) override;
    void text(const std::string& text) override;

private:
    void run(const std::string& display);
    void converse(xcb_connection_t* connection);
    bool serve(X11Input& input, xcb_connection_t* connection);
    void serveEvents(X11Input& input, xcb_connection_t* connection);

    MakeInputDevices mMakeDevices;
    std::shared_ptr<X11InputOrders> mOrders = std::make_shared<X11InputOrders>();
    std::shared_ptr<VirtualScreenDelegate> mFollower;
    std::atomic<InputAbilities> mAbilities = InputAbilities();
    ConnectionBreaker mBreaker;
    std::promise<void> mHasEnded;
    std::thread mThread;
};

} // namespace farview
