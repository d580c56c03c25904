#pragma once

#include "Applications/Device/InputReporter.h"

#include <QPointF>
#include <QSizeF>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

class QEvent;
class QEventPoint;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QTabletEvent;
class QTouchEvent;
class QWheelEvent;

namespace farview
{

class ScreenView;

/// Reads from Qt's events what the user does with the picture on a view, and reports it: each with
/// the place in the picture, and the size of that picture, that was drawn at that moment.
class PictureInput
{
public:
    /// `view` outlives this.
    explicit PictureInput(const ScreenView& view) : mView(view) {}

    /// Reports to `reporter` from now on; to nobody when it is null.
    void setReporter(InputReporter* reporter) { mReporter = reporter; }
    bool isOn() const { return mReporter && mReporter->takesInput(); }
    bool mayType() const { return mReporter && mReporter->takesTyping(); }

    /// Takes an event of the view while `isOn`. False when it is of no use to the computer.
    bool take(QEvent& event);
    /// The user is elsewhere now: lifts what is down.
    void leave();
    /// The pen is too far away to be seen.
    void penLeft();
    bool isPenDown() const { return mReporter && mReporter->pen().isDown; }

private:
    std::optional<LinkPlace> placeOf(const QPointF& position, bool isHeld) const;
    QSizeF contactOf(const QEventPoint& point) const;
    bool takeTouch(const QTouchEvent& event);
    void takePoint(const QEventPoint& point, bool hasPressure);
    std::optional<std::uint8_t> fingerOf(int point, bool isNew);
    void cancelFingers();
    bool takePen(const QTabletEvent& event);
    bool takePointer(const QMouseEvent& event);
    bool takeWheel(const QWheelEvent& event);
    bool takeKey(const QKeyEvent& event);
    bool takeText(const QInputMethodEvent& event);
    void type(const QString& text);

    const ScreenView& mView;
    InputReporter* mReporter = nullptr;
    /// Which of Qt's touch points each finger is.
    std::array<std::optional<int>, mostLinkFingers> mFingers;
};

} // namespace farview
