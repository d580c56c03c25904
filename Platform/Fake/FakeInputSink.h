#pragma once

#include "Platform/InputSink.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace farview
{

/// Writes down what it is given.
class FakeInputSink final : public InputSink
{
public:
    struct Button {
        PointerButton button;
        bool isDown;
        bool operator==(const Button&) const = default;
    };
    struct Wheel {
        double right;
        double down;
        bool operator==(const Wheel&) const = default;
    };
    struct Key {
        std::uint16_t code;
        bool isDown;
        bool operator==(const Key&) const = default;
    };
    using Event = std::variant<InputPlace, Button, Wheel, TouchPoint, PenState, Key, std::string>;

    /// Everything, unless a test takes something away.
    void setAbilities(InputAbilities abilities) { mAbilities = abilities; }
    /// What came since this was asked last.
    std::vector<Event> takeEvents() { return std::exchange(mEvents, {}); }

    InputAbilities abilities() const override { return mAbilities; }
    void movePointer(const InputPlace& place) override { mEvents.emplace_back(place); }
    void button(PointerButton button, bool isDown) override
    {
        mEvents.emplace_back(Button{button, isDown});
    }
    void wheel(double right, double down) override { mEvents.emplace_back(Wheel{right, down}); }
    void touch(const TouchPoint& point) override { mEvents.emplace_back(point); }
    void pen(const PenState& state) override { mEvents.emplace_back(state); }
    void key(std::uint16_t code, bool isDown) override { mEvents.emplace_back(Key{code, isDown}); }
    void text(const std::string& text) override { mEvents.emplace_back(text); }

private:
    InputAbilities mAbilities{true, true, true, true};
    std::vector<Event> mEvents;
};

} // namespace farview
