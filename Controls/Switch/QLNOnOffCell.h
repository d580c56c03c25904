#pragma once

#include "Controls/Canvas.h"
#include "Controls/Switch/NSImage_Additions.h"
#include "Platform/Types/Rect.h"

class QLNOnOff;

/// Draws the slider of the switch and follows the user's hand. y grows upward; the track of the
/// knob is the whole of the slider. Main thread only.
class QLNOnOffCell
{
public:
    enum TrackingState {
        pressedOnKnob = 0,
        dragged = 1,
        pressedOnTrack = 2, ///< beside the knob, which does not follow the mouse then
    };
    enum class FocusRingType { standard = 0, none = 1 };

    /// The tracking state; it keeps its last value between two presses.
    int state() const { return mState; }
    void setState(int state) { mState = state; }
    /// Whether the knob is held.
    bool isPressed() const { return mPressed; }

    /// The slider that the cell belongs to, which says so itself. The cell does not keep it.
    void setControlView(QLNOnOff* slider) { mControlView = slider; }
    void setImageSource(QLNImageSource source) { mImageSource = std::move(source); }
    const QLNImageSource& imageSource() const { return mImageSource; }
    bool showsFirstResponder() const { return mShowsFirstResponder; }
    void setShowsFirstResponder(bool shows) { mShowsFirstResponder = shows; }
    FocusRingType focusRingType() const { return mFocusRingType; }
    void setFocusRingType(FocusRingType type) { mFocusRingType = type; }

    /// False: the press is refused, because the knob is still moving.
    bool startTrackingAt(farview::Point startPoint, QLNOnOff& controlView);
    bool continueTracking(farview::Point lastPoint, farview::Point currentPoint,
                          QLNOnOff& controlView);
    /// A click, or a drag beyond a fifth of the way, switches; a shorter drag goes back.
    void stopTracking(farview::Point lastPoint, farview::Point stopPoint, QLNOnOff& controlView,
                      bool mouseIsUp);
    /// Lets go of the knob where it is.
    void cancelTracking() { mPressed = false; }

    /// Where the knob is drawn, in whole points; it reaches over both ends of the track. The flag
    /// makes no difference.
    farview::Rect knobRectFlipped(bool flipped) const;

    /// Pictures that the bundle does not have are left out.
    void drawWithFrame(const farview::Rect& cellFrame, const QLNOnOff& controlView,
                       farview::Canvas& canvas) const;
    void drawKnob(const farview::Rect& knobRect, farview::Canvas& canvas) const;

private:
    farview::Size imageSize(const char* name) const;
    double knobTravel() const;
    void composite(const char* image, farview::Point point, farview::CompositingOperation operation,
                   double fraction, farview::Canvas& canvas) const;
    void drawWell(farview::Point point, bool enabled, farview::Canvas& canvas) const;

    int mState = pressedOnKnob;
    bool mPressed = false;
    bool mShowsFirstResponder = false;
    FocusRingType mFocusRingType = FocusRingType::standard;
    QLNOnOff* mControlView = nullptr;
    QLNImageSource mImageSource;
    double mGrabbedAt = 0.0;    ///< where the knob was taken hold of
    double mGrabbedValue = 0.0; ///< and what the value was then
};
