#pragma once

#include "Link/Wire/LinkFrame.h"
#include "Platform/InputSink.h"
#include "Platform/RunLoop.h"
#include "Screen/PointerMapping.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace farview
{

/// How many events of a kind may come, evenly and at once.
class EventBudget
{
public:
    EventBudget(double perSecond, double atOnce)
        : mPerSecond(perSecond), mMost(atOnce), mLeft(atOnce)
    {
    }
    /// Whether there is room for so many now; if so, they have come.
    bool spend(double events, Duration now);

private:
    double mPerSecond;
    double mMost;
    double mLeft;
    Duration mAt{0};
};

/// What the user of a device does with the picture, on its way to the monitor. Passes on what is
/// allowed, on the monitor and not too much, and knows what is down, to lift it whenever the device
/// cannot. Where the monitor takes only a pointer, the first finger and the pen are one. Main
/// thread only.
class InputReceiver
{
public:
    struct Rights {
        bool input = false; ///< everything
        bool keys = false;  ///< keys and text, with `input`

        bool operator==(const Rights&) const = default;
    };

    // A device that keeps to the rules stays far below these.
    static constexpr double motionsPerSecond = 1000;
    static constexpr double strokesPerSecond = 200; ///< presses, and characters of a text
    static constexpr double strokesAtOnce = 400;

    /// `sink` outlives it; `now` is a clock that only goes forward.
    InputReceiver(InputSink& sink, std::function<Duration()> now)
        : mSink(sink), mNow(std::move(now))
    {
    }
    /// Lifts everything.
    ~InputReceiver() { releaseAll(); }
    InputReceiver(const InputReceiver&) = delete;
    InputReceiver& operator=(const InputReceiver&) = delete;

    void setMonitor(const MonitorPlace& monitor) { mMonitor = monitor; }
    /// Lifts what is not allowed any more.
    void setRights(const Rights& rights);
    /// Takes a frame of the feature `input`. True when a key was pressed, or text was typed.
    bool take(const LinkFrame& frame);
    /// Lifts every finger, the pen, every button and key.
    void releaseAll();

private:
    void pass(const LinkTouch& touch);
    void pass(const LinkPen& pen);
    void pass(const LinkPointer& pointer);
    void pass(const LinkWheel& wheel);
    bool pass(const LinkKey& key);
    bool pass(const LinkText& text);
    std::optional<InputPlace> placeOf(const LinkPlace& place) const;
    bool mayMove();
    bool mayStrike(double strokes = 1);
    void press(const TouchPoint& point);
    void lift(TouchPoint point, TouchPhase phase);
    void liftFingers();
    void setPen(const PenState& state);
    void setButtons(std::uint8_t buttons);
    void releaseKeys();

    InputSink& mSink;
    std::function<Duration()> mNow;
    MonitorPlace mMonitor;
    Rights mRights;
    EventBudget mMotions{motionsPerSecond, motionsPerSecond / 4};
    EventBudget mStrokes{strokesPerSecond, strokesAtOnce};
    /// Those that are down, as they were last.
    std::array<std::optional<TouchPoint>, mostLinkFingers> mFingers;
    std::optional<int> mFingerOfPointer; ///< the one that moves the pointer, where no others can
    std::optional<PenState> mPen;        ///< while it is near
    std::uint8_t mButtons = 0;
    std::bitset<256> mKeys;
};

} // namespace farview
