#pragma once

#include <cstdint>
#include <string>

namespace farview
{

/// A place on a monitor.
struct InputPlace {
    double x = 0; ///< in the monitor's own pixels, from its upper left corner
    double y = 0;
    double desktopX = 0; ///< the same place in the desktop's own units
    double desktopY = 0;

    bool operator==(const InputPlace&) const = default;
};

enum class TouchPhase { down, motion, up, cancel };

/// A finger on a monitor.
struct TouchPoint {
    int finger = 0; ///< 0 to 15; tells it from the others that are down
    TouchPhase phase = TouchPhase::down;
    InputPlace place = {};
    double pressure = 1; ///< 0 to 1
    double width = 0;    ///< of what touches, in the monitor's pixels; 0 where that is not known
    double height = 0;

    bool operator==(const TouchPoint&) const = default;
};

/// A pen on or above a monitor.
struct PenState {
    InputPlace place = {};
    bool isNear = true; ///< false: it has gone, and nothing else of this counts
    bool isDown = false;
    bool isEraser = false;
    double pressure = 0;      ///< 0 to 1
    int tiltX = 0;            ///< degrees, -90 to 90, to the right
    int tiltY = 0;            ///< towards the user
    std::uint8_t buttons = 0; ///< of its barrel: bit 0 the lower one, bit 1 the upper one

    bool operator==(const PenState&) const = default;
};

enum class PointerButton { left, right, middle, back, forward };

/// What an `InputSink` passes on as it is. Whoever feeds it makes something else of the rest.
/// Aligned so that threads can exchange it without a lock.
struct alignas(8) InputAbilities {
    bool pointer = false; ///< with its buttons and the wheel
    bool touch = false;   ///< several fingers at once
    bool pen = false;     ///< with pressure
    bool keys = false;    ///< and text
    /// Several fingers would get through, too, if an administrator allowed it.
    bool touchWithARight = false;

    bool operator==(const InputAbilities&) const = default;
};

/// What a user does at a monitor that is elsewhere, as if it were done here. Places outside the
/// monitor, and what the sink is not able to do, are passed over. Every operation returns at once;
/// they take effect in the order of the calls. What is down when the sink goes is released. Main
/// thread only.
class InputSink
{
public:
    virtual ~InputSink() = default;

    /// May change while a monitor is open.
    virtual InputAbilities abilities() const = 0;
    virtual void movePointer(const InputPlace& place) = 0;
    virtual void button(PointerButton button, bool isDown) = 0;
    /// In notches, or parts of them; positive: what is right or below comes into sight.
    virtual void wheel(double right, double down) = 0;
    virtual void touch(const TouchPoint& point) = 0;
    virtual void pen(const PenState& state) = 0;
    /// The kernel's code of a key, as in linux/input-event-codes.h.
    virtual void key(std::uint16_t code, bool isDown) = 0;
    /// Types a text, whatever the desktop's keyboard layout.
    virtual void text(const std::string& text) = 0;
};

/// For monitors that take no input.
class NoInput final : public InputSink
{
public:
    InputAbilities abilities() const override { return {}; }
    void movePointer(const InputPlace&) override {}
    void button(PointerButton, bool) override {}
    void wheel(double, double) override {}
    void touch(const TouchPoint&) override {}
    void pen(const PenState&) override {}
    void key(std::uint16_t, bool) override {}
    void text(const std::string&) override {}
};

} // namespace farview
