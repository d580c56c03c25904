#pragma once

#include "Platform/Desktop/Screens/Mutter/MutterSession.h"
#include "Platform/InputSink.h"
#include "Platform/VirtualScreens.h"

#include <QVariantList>

#include <bitset>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

namespace farview
{

/// Input for a monitor that Mutter made, over the session that made it. Mutter knows no pens, and
/// types only what the keyboard layout of the moment has.
class MutterInput final : public InputSink
{
public:
    /// Both must live longer. The wish is looked at each time.
    MutterInput(MutterSession& session, const ScreenWish& wish) : mSession(session), mWish(wish) {}
    MutterInput(const MutterInput&) = delete;
    MutterInput& operator=(const MutterInput&) = delete;

    /// Has Mutter make its devices, so that programs know of them before they are used. To be
    /// called when the session was started, before anybody takes its pictures.
    void makeDevices();
    /// The monitor is there, and like that.
    void setMonitor(const ScreenGeometry& monitor) { mMonitor = monitor; }
    /// Keeps back what the user does; `then` is called on a later turn, when Mutter has done what
    /// came before.
    void hold(std::function<void()> then);
    void goOn();
    /// Lifts all fingers and passes on nothing any more. Keys and buttons are released by Mutter
    /// when it ends the session.
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

    MutterSession& mSession;
    const ScreenWish& mWish;
    std::optional<ScreenGeometry> mMonitor;
    std::bitset<16> mFingers; ///< that are down
    std::deque<Notice> mWaiting;
    int mUnsettled = 0; ///< touches of which Mutter may not know yet
    bool mIsHeld = false;
};

} // namespace farview
