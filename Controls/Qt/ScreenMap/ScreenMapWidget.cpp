#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <limits>
#include <utility>

namespace farview
{
namespace
{

constexpr int marginAround = 6; // for the focus ring
constexpr double lineWidth = 1.5;
constexpr double screenRadius = 2;
constexpr double ringRadius = 6;
constexpr int linesHigh = 9;
constexpr int linesWide = 14;
constexpr int answerTime = 1000; // milliseconds

QRectF rectOf(const PixelRect& part)
{
    return {double(part.x), double(part.y), double(part.width), double(part.height)};
}

int place(double value)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<int>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

void drawScreen(QPainter& painter, const QRectF& place)
{
    painter.drawRoundedRect(place.adjusted(1, 1, -1, -1), screenRadius, screenRadius);
}

std::optional<ScreenSide> sideForKey(int key)
{
    switch (key) {
    case Qt::Key_Right:
        return ScreenSide::right;
    case Qt::Key_Left:
        return ScreenSide::left;
    case Qt::Key_Up:
        return ScreenSide::above;
    case Qt::Key_Down:
        return ScreenSide::below;
    default:
        return std::nullopt;
    }
}

} // namespace

ScreenMapWidget::ScreenMapWidget(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ScreenMapWidget::setMap(std::shared_ptr<ScreenMap> map) { mMap = std::move(map); }

void ScreenMapWidget::choose(ScreenSide side)
{
    const auto map = mMap;
    if (isEmpty() || !isEnabled())
        return;
    mAsked = side;
    mPatience.start(answerTime, this);
    update();
    map->userChose(side);
}

QSize ScreenMapWidget::sizeHint() const
{
    return QSize(linesWide, linesHigh) * fontMetrics().lineSpacing();
}

// --- where things are ---

/// The part of the desktop that is drawn: on each side of the user's screens there is room for the
/// device's, so that nothing changes its size while that is moved.
QRectF ScreenMapWidget::desktop() const
{
    QRectF area;
    for (const auto& screen : mMap->screens())
        area |= rectOf(screen);
    const QRectF monitor = rectOf(mMap->monitor());
    area.adjust(-monitor.width(), -monitor.height(), monitor.width(), monitor.height());
    return area | monitor;
}

double ScreenMapWidget::scale() const
{
    const QRectF area = desktop();
    return std::min((width() - 2 * marginAround) / area.width(),
                    (height() - 2 * marginAround) / area.height());
}

QRectF ScreenMapWidget::drawn(const PixelRect& part) const
{
    const QPointF middle = desktop().center();
    const QRectF place = rectOf(part);
    return {(place.topLeft() - middle) * scale() + QRectF(rect()).center(), place.size() * scale()};
}

PixelRect ScreenMapWidget::shownMonitor() const
{
    const PixelRect& is = mMap->monitor();
    if (!mAsked || *mAsked == side())
        return is;
    const auto corner = cornerBeside(*mAsked, is.width, is.height, mMap->screens());
    return pixelRect(corner.x, corner.y, is.width, is.height);
}

/// Where the device's screen belongs when the mouse has moved it that far.
ScreenSide ScreenMapWidget::sideAt(QPointF mouse) const
{
    const QPointF moved = (mouse - *mPressed) / scale();
    const PixelRect& is = mMap->monitor();
    return sideOf(pixelRect(place(is.x + moved.x()), place(is.y + moved.y()), is.width, is.height),
                  mMap->screens().front());
}

// --- what the user does ---

void ScreenMapWidget::mousePressEvent(QMouseEvent* event)
{
    if (isEmpty() || event->button() != Qt::LeftButton ||
        !drawnMonitor().contains(event->position()))
        return;
    mPatience.stop();
    // As if it had been taken where the map has it: what was asked for may not have come yet.
    mPressed = event->position() - drawnMonitor().topLeft() + drawn(mMap->monitor()).topLeft();
}

void ScreenMapWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!mPressed)
        return;
    mAsked = sideAt(event->position());
    update();
}

void ScreenMapWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (!mPressed || event->button() != Qt::LeftButton)
        return;
    const ScreenSide asked = sideAt(event->position());
    refresh();
    if (asked != side())
        choose(asked);
}

void ScreenMapWidget::keyPressEvent(QKeyEvent* event)
{
    const auto side = sideForKey(event->key());
    if (side)
        choose(*side);
    else if (event->matches(QKeySequence::Undo) && mMap)
        std::shared_ptr(mMap)->userTookBack();
    else if (event->matches(QKeySequence::Cancel) && mPressed)
        refresh();
    else
        QWidget::keyPressEvent(event);
}

bool ScreenMapWidget::event(QEvent* event)
{
    if (event->type() == QEvent::UngrabMouse && mPressed)
        refresh();
    return QWidget::event(event);
}

void ScreenMapWidget::hideEvent(QHideEvent* event)
{
    refresh();
    QWidget::hideEvent(event);
}

void ScreenMapWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == mPatience.timerId())
        refresh();
    else
        QWidget::timerEvent(event);
}

void ScreenMapWidget::refresh()
{
    mPatience.stop();
    mPressed.reset();
    mAsked.reset();
    update();
}

// --- how it looks ---

void ScreenMapWidget::paintEvent(QPaintEvent* /*event*/)
{
    if (isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawScreens(painter);
    painter.setBrush(palette().color(QPalette::Highlight));
    drawScreen(painter, drawnMonitor());
    if (!hasFocus())
        return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), lineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), ringRadius, ringRadius);
}

/// The user's own; the main one has a bar on top.
void ScreenMapWidget::drawScreens(QPainter& painter) const
{
    constexpr double barHeight = 0.12; // of the screen
    const QColor line = palette().color(QPalette::WindowText);
    painter.setPen(QPen(line, lineWidth));
    painter.setBrush(palette().color(QPalette::Window));
    for (const auto& screen : mMap->screens())
        drawScreen(painter, drawn(screen));
    QRectF bar = drawn(mMap->screens().front()).adjusted(1, 1, -1, -1);
    bar.setHeight(bar.height() * barHeight);
    painter.fillRect(bar, line);
}

} // namespace farview
