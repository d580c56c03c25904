#include "Tests/Support/InputTestDevice.h"

#include "Platform/Posix/FileDescriptor.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <stdexcept>

namespace farview
{
namespace
{

/// The messages of the X server's driver "inputtest", which begin with length and kind.
enum class Kind : std::uint32_t {
    version = 0,
    sync = 1,
    motion = 2,
    nearness = 3,
    button = 4,
    touch = 6
};

struct Head {
    std::uint32_t length;
    Kind kind;
};
struct Version {
    Head head{sizeof(Version), Kind::version};
    std::uint16_t major = 1;
    std::uint16_t minor = 1;
};
struct Sync {
    Head head{sizeof(Sync), Kind::sync};
};
/// What has changed: the axes whose bit is set.
struct Axes {
    std::uint32_t hasRaw = 0;
    std::array<std::uint8_t, 8> mask{};
    alignas(8) std::array<double, 64> values{};
    std::array<double, 64> rawValues{};

    void set(std::size_t axis, double value)
    {
        mask.at(axis / 8) |= static_cast<std::uint8_t>(1 << axis % 8);
        values.at(axis) = value;
    }
};
/// Motion: whether it is absolute. Nearness: whether it is. Touch: which finger, and what it does.
struct Event {
    Head head{sizeof(Event), Kind::motion};
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    Axes axes{};
};
struct Button {
    Head head{sizeof(Button), Kind::button};
    std::uint32_t isAbsolute = 1;
    std::uint32_t number = 1;
    std::uint32_t isDown = 0;
    std::uint32_t unused = 0;
    Axes axes{};
};

/// Of both devices' driver.
constexpr int mostPressure = 2047;
constexpr std::size_t pressureAxis = 4;

class Device
{
public:
    explicit Device(const std::string& path)
        : mSocket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (::connect(mSocket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("the X server has no such device: " + path);
        send(Version());
        wait(12);
    }
    /// Goes on when the server has taken it.
    template <typename Message> void tell(const Message& message)
    {
        send(message);
        send(Sync());
        wait(8);
    }

private:
    template <typename Message> void send(const Message& message)
    {
        writeAll(mSocket.get(), {reinterpret_cast<const char*>(&message), sizeof message});
    }
    void wait(std::size_t length) const
    {
        std::array<char, 16> answer{};
        ::recv(mSocket.get(), answer.data(), length, MSG_WAITALL);
    }

    FileDescriptor mSocket;
};

class Devices final : public InputDevices
{
public:
    explicit Devices(const std::string& folder) : mTouch(folder + "/touch"), mPen(folder + "/pen")
    {
    }

    void touch(const TouchPoint& point, DevicePlace place) override
    {
        constexpr std::array phases{18, 19, 20, 20}; // begins, goes on, ends
        if (point.phase == TouchPhase::down)
            mTouches[point.finger] = mNext++;
        Event event;
        event.head.kind = Kind::touch;
        event.first = mTouches[point.finger];
        event.second = static_cast<std::uint32_t>(phases.at(static_cast<std::size_t>(point.phase)));
        event.axes.set(0, place.x);
        event.axes.set(1, place.y);
        event.axes.set(pressureAxis, point.pressure * mostPressure);
        mTouch.tell(event);
    }
    void pen(const PenState& state, DevicePlace place) override
    {
        if (state.isNear != mIsNear)
            tellNearness(state.isNear);
        if (!state.isNear)
            return;
        Event motion;
        motion.first = 1;
        motion.axes.set(0, place.x);
        motion.axes.set(1, place.y);
        mPen.tell(motion);
        if (state.isDown != mIsDown)
            tellTip(state.isDown);
    }

private:
    void tellNearness(bool isNear)
    {
        if (!isNear && mIsDown)
            tellTip(false);
        mIsNear = isNear;
        Event event;
        event.head.kind = Kind::nearness;
        event.first = isNear;
        mPen.tell(event);
    }
    void tellTip(bool isDown)
    {
        mIsDown = isDown;
        Button button;
        button.isDown = isDown;
        mPen.tell(button);
    }

    Device mTouch;
    Device mPen;
    std::map<int, std::uint32_t> mTouches;
    std::uint32_t mNext = 1;
    bool mIsNear = false;
    bool mIsDown = false;
};

/// Lets go of them without closing them.
class Borrowed final : public InputDevices
{
public:
    explicit Borrowed(std::shared_ptr<InputDevices> devices) : mDevices(std::move(devices)) {}

    void touch(const TouchPoint& point, DevicePlace place) override
    {
        mDevices->touch(point, place);
    }
    void pen(const PenState& state, DevicePlace place) override { mDevices->pen(state, place); }

private:
    std::shared_ptr<InputDevices> mDevices;
};

} // namespace

InputTestDevices::InputTestDevices(const std::string& folder)
    : mDevices(std::make_shared<Devices>(folder))
{
}

MakeInputDevices InputTestDevices::maker() const
{
    return [devices = mDevices] { return std::make_unique<Borrowed>(devices); };
}

} // namespace farview
