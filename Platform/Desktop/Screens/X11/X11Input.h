#pragma once

#include "Platform/Desktop/Screens/X11/DeviceInput.h"
#include "Platform/Desktop/Screens/X11/TypedText.h"
#include "Platform/Desktop/Screens/X11/XTestInput.h"
#include "Platform/InputSink.h"
#include "Platform/Types/PixelRect.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// Input at one monitor of an X server: as `InputSink`, but on a thread of its own, which waits for
/// the server.
class X11Input
{
public:
    /// `connection` is usable and has what `XTestInput` needs. `devices` may be null.
    X11Input(xcb_connection_t* connection, std::unique_ptr<InputDevices> devices);

    /// Where the monitor is now; nothing: nowhere. When that changes, what is down is lifted, and
    /// that on the monitor, too.
    void setArea(const std::optional<PixelRect>& area);

    InputAbilities abilities() const;
    void movePointer(const InputPlace& place);
    void button(PointerButton button, bool isDown);
    void wheel(double right, double down);
    void touch(TouchPoint point);
    void pen(PenState state);
    void key(std::uint16_t code, bool isDown);
    void text(const std::string& text);
    void releaseAll();

    /// True when the abilities may have changed.
    bool serve(const xcb_generic_event_t& event) { return mDevices.serve(event); }
    /// What is to be done later, and how long that may wait, as poll() takes it.
    void serveTime() { mText.giveBackWhatIsDue(); }
    int millisecondsLeft() const { return mText.millisecondsLeft(); }
    /// Before the connection ends.
    void finish();

private:
    bool locate(InputPlace& place) const;
    void keepOnMonitor();
    void turn(double& sum, double notches, std::uint8_t back, std::uint8_t forth);
    void placePointer();
    void liftFinger(int finger);
    void takePenAway();

    xcb_connection_t* mConnection;
    XTestInput mHands;
    TypedText mText;
    DeviceInput mDevices;
    std::optional<PixelRect> mArea;
    /// Where the device's user has put it; a mouse may have moved it away.
    std::optional<InputPlace> mPointer;
    std::map<int, TouchPoint> mFingers; ///< that are down
    std::optional<PenState> mPen;       ///< that is near
    double mRight = 0;                  ///< parts of notches, until they are a whole one
    double mDown = 0;
};

} // namespace farview
