#include "Applications/Device/PictureInput.h"

#include "Applications/Device/ScreenView.h"
#include "Screen/PointerMapping.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <limits>
#include <linux/input-event-codes.h>
#include <map>

namespace farview
{
namespace
{

/// What X11 and Wayland add to the kernel's code of a key.
constexpr quint32 scanCodeOffset = 8;
/// A pad that tells pixels only: so many 120ths of a notch are one of them.
constexpr int wheelPartsOfPixel = 8;

constexpr int allButtons = 31;

template <typename Number> Number within(double value)
{
    using Limits = std::numeric_limits<Number>;
    return static_cast<Number>(
        std::lround(std::clamp<double>(value, Limits::min(), Limits::max())));
}

std::uint16_t wirePressure(double pressure)
{
    return within<std::uint16_t>(pressure * kFullLinkPressure);
}

std::int8_t wireTilt(double degrees)
{
    return static_cast<std::int8_t>(std::lround(std::clamp(degrees, -90.0, 90.0)));
}

std::optional<LinkTouchPhase> phaseOf(QEventPoint::State state)
{
    switch (state) {
    case QEventPoint::Pressed:
        return LinkTouchPhase::down;
    case QEventPoint::Updated:
        return LinkTouchPhase::motion;
    case QEventPoint::Released:
        return LinkTouchPhase::up;
    default:
        return std::nullopt;
    }
}

/// Keys of an on-screen keyboard that has no codes; 0 for others.
quint32 codeWithoutScanCode(int key)
{
    static const std::map<int, quint32> codes = {{Qt::Key_Escape, KEY_ESC},
                                                 {Qt::Key_Backspace, KEY_BACKSPACE},
                                                 {Qt::Key_Tab, KEY_TAB},
                                                 {Qt::Key_Return, KEY_ENTER},
                                                 {Qt::Key_Enter, KEY_KPENTER},
                                                 {Qt::Key_Home, KEY_HOME},
                                                 {Qt::Key_Up, KEY_UP},
                                                 {Qt::Key_PageUp, KEY_PAGEUP},
                                                 {Qt::Key_Left, KEY_LEFT},
                                                 {Qt::Key_Right, KEY_RIGHT},
                                                 {Qt::Key_End, KEY_END},
                                                 {Qt::Key_Down, KEY_DOWN},
                                                 {Qt::Key_PageDown, KEY_PAGEDOWN},
                                                 {Qt::Key_Delete, KEY_DELETE}};
    const auto found = codes.find(key);
    return found == codes.end() ? 0 : found->second;
}

/// The kernel's code; 0 when the link has none for it.
std::uint8_t codeOf(const QKeyEvent& event)
{
    const quint32 native = event.nativeScanCode();
    const quint32 code =
        native > scanCodeOffset ? native - scanCodeOffset : codeWithoutScanCode(event.key());
    return code <= std::numeric_limits<std::uint8_t>::max() ? static_cast<std::uint8_t>(code) : 0;
}

} // namespace

bool PictureInput::take(QEvent& event)
{
    if (const auto* touch = dynamic_cast<QTouchEvent*>(&event))
        return takeTouch(*touch);
    if (const auto* pen = dynamic_cast<QTabletEvent*>(&event))
        return takePen(*pen);
    if (const auto* wheel = dynamic_cast<QWheelEvent*>(&event))
        return takeWheel(*wheel);
    if (const auto* pointer = dynamic_cast<QMouseEvent*>(&event))
        return takePointer(*pointer);
    if (const auto* key = dynamic_cast<QKeyEvent*>(&event))
        return takeKey(*key);
    const auto* text = dynamic_cast<QInputMethodEvent*>(&event);
    return text && takeText(*text);
}

void PictureInput::leave()
{
    if (mReporter)
        mReporter->liftAll();
}

std::optional<LinkPlace> PictureInput::placeOf(const QPointF& position, bool isHeld) const
{
    const PicturePlace& drawn = mView.drawnPlace();
    const QRectF area = drawn.area;
    const QPointF pixel = position * mView.ratio();
    return picturePlace(pixel.x(), pixel.y(),
                        {area.x(), area.y(), area.width(), area.height(), drawn.picture.width(),
                         drawn.picture.height()},
                        isHeld);
}

/// In pixels of the picture.
QSizeF PictureInput::contactOf(const QEventPoint& point) const
{
    const PicturePlace& drawn = mView.drawnPlace();
    const QSizeF onGlass = point.ellipseDiameters() * mView.ratio();
    return {onGlass.width() * drawn.picture.width() / drawn.area.width(),
            onGlass.height() * drawn.picture.height() / drawn.area.height()};
}

// --- fingers ---------------------------------------------------------------------------------

bool PictureInput::takeTouch(const QTouchEvent& event)
{
    // At the first finger none of those before is there any more.
    if (event.type() == QEvent::TouchBegin || event.type() == QEvent::TouchCancel)
        cancelFingers();
    const bool hasPressure =
        event.pointingDevice()->hasCapability(QInputDevice::Capability::Pressure);
    if (event.type() != QEvent::TouchCancel) {
        for (const QEventPoint& point : event.points())
            takePoint(point, hasPressure);
    }
    return true;
}

void PictureInput::takePoint(const QEventPoint& point, bool hasPressure)
{
    const auto phase = phaseOf(point.state());
    const bool isNew = phase == LinkTouchPhase::down;
    const auto finger = fingerOf(point.id(), isNew);
    if (!phase || !finger)
        return;
    const auto place = placeOf(point.position(), !isNew);
    if (place) {
        const QSizeF contact = contactOf(point);
        mReporter->touch({*finger, *phase, *place,
                          hasPressure ? wirePressure(point.pressure()) : kFullLinkPressure,
                          within<std::uint16_t>(contact.width()),
                          within<std::uint16_t>(contact.height())});
    }
    if (!place || phase == LinkTouchPhase::up)
        mFingers[*finger].reset();
}

/// Nothing for one that did not begin on the picture, or came when too many were there.
std::optional<std::uint8_t> PictureInput::fingerOf(int point, bool isNew)
{
    auto* found = std::find(mFingers.begin(), mFingers.end(), point);
    if (found == mFingers.end() && isNew)
        found = std::find(mFingers.begin(), mFingers.end(), std::nullopt);
    if (found == mFingers.end())
        return std::nullopt;
    *found = point;
    return static_cast<std::uint8_t>(found - mFingers.begin());
}

void PictureInput::cancelFingers()
{
    mFingers = {};
    mReporter->cancelFingers();
}

// --- pen, pointer and wheel ------------------------------------------------------------------

bool PictureInput::takePen(const QTabletEvent& event)
{
    const bool wasDown = mReporter->pen().isDown;
    const auto place = placeOf(event.position(), wasDown);
    if (!place) {
        penLeft();
        return true;
    }
    const auto buttons = event.buttons();
    const bool isPress = event.type() == QEvent::TabletPress;
    LinkPen pen{.place = *place};
    pen.isDown = buttons.testFlag(Qt::LeftButton) && (isPress || wasDown);
    pen.isEraser = event.pointerType() == QPointingDevice::PointerType::Eraser;
    pen.pressure = pen.isDown ? wirePressure(event.pressure()) : 0;
    pen.tiltX = wireTilt(event.xTilt());
    pen.tiltY = wireTilt(event.yTilt());
    pen.buttons =
        (buttons.testFlag(Qt::MiddleButton) ? 1 : 0) | (buttons.testFlag(Qt::RightButton) ? 2 : 0);
    mReporter->pen(pen);
    return true;
}

void PictureInput::penLeft()
{
    if (mReporter)
        mReporter->pen({.place = mReporter->pen().place, .isNear = false});
}

bool PictureInput::takePointer(const QMouseEvent& event)
{
    // What Qt makes of a finger or a pen was told as what it is.
    if (event.source() != Qt::MouseEventNotSynthesized)
        return true;
    LinkPointer pointer = mReporter->pointer();
    const auto place = placeOf(event.position(), pointer.buttons != 0);
    if (!place)
        return true;
    pointer.place = *place;
    // Qt numbers the buttons as the link does.
    const auto button = static_cast<std::uint8_t>(event.button() & allButtons);
    if (event.type() == QEvent::MouseButtonRelease)
        pointer.buttons &= static_cast<std::uint8_t>(~button);
    else
        pointer.buttons |= button;
    mReporter->pointer(pointer);
    return true;
}

bool PictureInput::takeWheel(const QWheelEvent& event)
{
    const auto place = placeOf(event.position(), false);
    const QPoint turned =
        event.angleDelta().isNull() ? event.pixelDelta() * wheelPartsOfPixel : event.angleDelta();
    if (place)
        mReporter->wheel(
            {*place, within<std::int16_t>(-turned.x()), within<std::int16_t>(-turned.y())});
    return true;
}

// --- keys and text ---------------------------------------------------------------------------

bool PictureInput::takeKey(const QKeyEvent& event)
{
    if (!mReporter->takesTyping())
        return false;
    // The computer repeats by itself.
    if (event.type() == QEvent::ShortcutOverride || event.isAutoRepeat())
        return true;
    const bool isDown = event.type() == QEvent::KeyPress;
    if (const std::uint8_t code = codeOf(event))
        mReporter->key({code, isDown});
    else if (isDown && !event.text().isEmpty() && event.text().front().isPrint())
        type(event.text());
    return true;
}

bool PictureInput::takeText(const QInputMethodEvent& event)
{
    if (!mReporter->takesTyping())
        return false;
    type(event.commitString());
    return true;
}

/// The end of a line is a key to the computer.
void PictureInput::type(const QString& text)
{
    const QStringList lines = text.split(u'\n');
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (index > 0) {
            mReporter->key({KEY_ENTER, true});
            mReporter->key({KEY_ENTER, false});
        }
        mReporter->text(lines[index].toStdString());
    }
}

} // namespace farview
