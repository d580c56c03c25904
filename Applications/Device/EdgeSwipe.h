#pragma once

#include <QTouchEvent>

#include <memory>

namespace farview
{

/// One finger that comes in over the upper edge of a window and goes down asks for the window's
/// bar. Its touch is kept back until that is known, so that nothing is lost of one that was meant
/// for what is shown there.
class EdgeSwipe
{
public:
    enum class Verdict { passOn, keepBack, isSwipe };

    Verdict take(const QTouchEvent& event);
    /// The beginning of a touch that is passed on now; null unless it was kept back.
    std::unique_ptr<QEvent> takeBegin() { return std::move(mBegin); }

private:
    Verdict begin(const QTouchEvent& event);

    std::unique_ptr<QEvent> mBegin; ///< while it may be a swipe, and until it is taken
    QPointF mPlace;                 ///< of that
    bool mIsSwipe = false;
};

} // namespace farview
