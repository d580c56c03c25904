#pragma once

#include "Controls/ScreenMap.h"

#include <QBasicTimer>
#include <QWidget>

#include <memory>
#include <optional>

namespace farview
{

/// Draws the screens of a map, as large as they fit, and hands it what mouse and keys do. Screens
/// stand as they do on the desk, whatever the reading direction. What the user asks for is drawn
/// until the map shows what became of it, for a second at most. Empty without a map.
class ScreenMapWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ScreenMapWidget(QWidget* parent);

    void setMap(std::shared_ptr<ScreenMap> map);
    /// Shows what the map is now, and lets go of what the user holds or asked for.
    void refresh();
    /// What the user asks for, wherever.
    void choose(ScreenSide side);

    /// Where that part of the desktop is drawn.
    QRectF drawn(const PixelRect& part) const;
    /// Where the device's screen is drawn.
    QRectF drawnMonitor() const { return drawn(shownMonitor()); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    bool isEmpty() const { return !mMap || mMap->screens().empty(); }
    QRectF desktop() const;
    double scale() const;
    PixelRect shownMonitor() const;
    ScreenSide side() const { return sideOf(mMap->monitor(), mMap->screens().front()); }
    ScreenSide sideAt(QPointF mouse) const;
    void drawScreens(QPainter& painter) const;

    std::shared_ptr<ScreenMap> mMap;
    std::optional<ScreenSide> mAsked;
    std::optional<QPointF> mPressed; ///< while the mouse holds the device's screen
    QBasicTimer mPatience;
};

} // namespace farview
