#include "Platform/Desktop/Screens/X11/X11InputSink.h"

#include "Platform/Desktop/Screens/X11/X11Input.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <utility>

namespace farview
{
namespace
{

/// For releasing what is down, which takes a millisecond, and for giving back keys that were lent.
constexpr std::chrono::milliseconds patience{250};
/// What a device sends in a second or two.
constexpr std::size_t mostOrders = 4096;

void release(X11Input& input) { input.releaseAll(); }

/// Tells the input where its monitor is.
class Follower final : public VirtualScreenDelegate
{
public:
    explicit Follower(std::shared_ptr<X11InputOrders> orders) : mOrders(std::move(orders)) {}

    void didAppear(const ScreenGeometry& geometry) override { mOrders->setArea(geometry.area); }
    void didChange(const ScreenGeometry& geometry) override { mOrders->setArea(geometry.area); }
    void frameReady() override {}
    void cursorChanged() override {}
    void didEnd(ScreenObstacle) override { mOrders->setArea(std::nullopt); }

private:
    std::shared_ptr<X11InputOrders> mOrders;
};

bool isUsable(xcb_connection_t* connection)
{
    return screenOf(connection) && XTestInput::isPossible(connection);
}

} // namespace

X11InputOrders::X11InputOrders() : mDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void X11InputOrders::change(const std::function<void()>& change)
{
    {
        const std::lock_guard lock(mMutex);
        change();
    }
    ::eventfd_write(mDescriptor.get(), 1);
}

void X11InputOrders::give(Order order)
{
    change([&] {
        if (mTaken.orders.size() >= mostOrders) {
            mTaken.orders.clear();
            order = release;
        }
        mTaken.orders.push_back(std::move(order));
    });
}

void X11InputOrders::setArea(const std::optional<PixelRect>& area)
{
    change([&] { mTaken.area = area; });
}

void X11InputOrders::end()
{
    change([&] { mTaken.isLast = true; });
}

X11InputOrders::Taken X11InputOrders::take()
{
    eventfd_t count = 0;
    ::eventfd_read(mDescriptor.get(), &count);
    const std::lock_guard lock(mMutex);
    return {mTaken.area, std::exchange(mTaken.orders, {}), mTaken.isLast};
}

X11InputSink::X11InputSink(MakeInputDevices makeDevices)
    : mMakeDevices(std::move(makeDevices)), mFollower(std::make_shared<Follower>(mOrders))
{
    const char* display = std::getenv("DISPLAY");
    const WithoutSignals scope;
    mThread = std::thread([this, name = std::string(display ? display : "")] { run(name); });
}

X11InputSink::~X11InputSink()
{
    mOrders->end();
    if (mHasEnded.get_future().wait_for(patience) == std::future_status::timeout)
        mBreaker.cut();
    mThread.join();
}

void X11InputSink::releaseAll() { mOrders->give(release); }

void X11InputSink::movePointer(const InputPlace& place)
{
    mOrders->give([=](X11Input& input) { input.movePointer(place); });
}

void X11InputSink::button(PointerButton button, bool isDown)
{
    mOrders->give([=](X11Input& input) { input.button(button, isDown); });
}

void X11InputSink::wheel(double right, double down)
{
    mOrders->give([=](X11Input& input) { input.wheel(right, down); });
}

void X11InputSink::touch(const TouchPoint& point)
{
    mOrders->give([=](X11Input& input) { input.touch(point); });
}

void X11InputSink::pen(const PenState& state)
{
    mOrders->give([=](X11Input& input) { input.pen(state); });
}

void X11InputSink::key(std::uint16_t code, bool isDown)
{
    mOrders->give([=](X11Input& input) { input.key(code, isDown); });
}

void X11InputSink::text(const std::string& text)
{
    mOrders->give([=](X11Input& input) { input.text(text); });
}

void X11InputSink::run(const std::string& display)
{
    try {
        const auto connection = connectX(display.c_str());
        const BreakerHold hold(mBreaker, connection.get());
        if (isUsable(connection.get()))
            converse(connection.get());
    } catch (const std::exception&) {
        // No memory.
    }
    mAbilities = InputAbilities();
    mHasEnded.set_value();
}

void X11InputSink::converse(xcb_connection_t* connection)
{
    X11Input input(connection, mMakeDevices());
    mAbilities = input.abilities();
    while (serve(input, connection)) {
        std::array<pollfd, 2> files{
            {{xcb_get_file_descriptor(connection), POLLIN, 0}, {mOrders->descriptor(), POLLIN, 0}}};
        ::poll(files.data(), files.size(), input.millisecondsLeft());
    }
    input.finish();
}

/// False when nothing follows.
bool X11InputSink::serve(X11Input& input, xcb_connection_t* connection)
{
    const auto taken = mOrders->take();
    // The server has told how large the desktop is before it said where a monitor is there.
    serveEvents(input, connection);
    input.setArea(taken.area);
    for (const auto& order : taken.orders)
        order(input);
    input.serveTime();
    // An answer that was waited for may have brought events along.
    serveEvents(input, connection);
    xcb_flush(connection);
    return !taken.isLast && xcb_connection_has_error(connection) == 0;
}

void X11InputSink::serveEvents(X11Input& input, xcb_connection_t* connection)
{
    while (const auto event = XReply<xcb_generic_event_t>(xcb_poll_for_event(connection))) {
        if (input.serve(*event))
            mAbilities = input.abilities();
    }
}

} // namespace farview
