#pragma once

#include "Platform/InputSink.h"
#include "Platform/VirtualScreens.h"

#include <QVariant>
#include <QVariantList>

#include <bitset>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

namespace farview
{

/// A session at the desktop that shows a monitor as a stream and takes input for it, in the words
/// of Mutter's own operations.
class StreamControl
{
public:
    virtual ~StreamControl() = default;

    virtual InputAbilities inputAbilities() const = 0;
    /// The monitor's name in calls.
    virtual QVariant streamName() const = 0;
    /// Tells what the user did there, after what was told before. Lost unless the session was
    /// started and goes on; a refusal changes nothing.
    virtual void notify(const char* member, const QVariantList& arguments) = 0;
    /// Calls that on a later turn, when the desktop has done what it was told before; not once this
    /// object is gone.
    virtual void settle(std::function<void()> then) = 0;
};

/// Input for a monitor that a stream shows, over the session that has both. There are no pens, and
/// no letters but those that the keyboard layout of the moment has.
class StreamInput final : public InputSink
{
public:
    /// Both must live longer. The wish is looked at each time.
    StreamInput(StreamControl& session, const ScreenWish& wish) : mSession(session), mWish(wish) {}
    StreamInput(const StreamInput&) = delete;
    StreamInput& operator=(const StreamInput&) = delete;

    /// The monitor is there, and like that.
    void setMonitor(const ScreenGeometry& monitor) { mMonitor = monitor; }
    /// Keeps back what the user does until `goOn` was called as often; `then` is called on a later
    /// turn, when the desktop has done what came before.
    void hold(std::function<void()> then);
    void goOn();
    /// Lifts all fingers and passes on nothing any more. Keys and buttons are released by the
    /// desktop when it ends the session.
    void end();

    InputAbilities abilities() const override;
    void movePointer(const InputPlace& place) override;
    void button(PointerButton button, bool isDown) override;
    void wheel(double right, double down) override;
    void touch(const TouchPoint& point) override;
    void pen(const PenState&) override {}
    void key(std::uint16_t code, bool isDown) override;
    void text(const std::string& text) override;

private:
    using Notice = std::pair<const char*, QVariantList>;

    bool isOpen() const { return mWish.input && mMonitor; }
    void notify(const char* member, const QVariantList& arguments);
    void passOn();
    void send(const Notice& notice);
    void press(int finger, const InputPlace& place);
    void lift(int finger);
    std::optional<QVariantList> onStream(const InputPlace& place) const;

    StreamControl& mSession;
    const ScreenWish& mWish;
    std::optional<ScreenGeometry> mMonitor;
    std::bitset<16> mFingers; ///< that are down
    std::deque<Notice> mWaiting;
    int mUnsettled = 0; ///< touches of which the desktop may not know yet
    int mHolds = 0;
};

} // namespace farview
