#pragma once

#include "Applications/Device/GlassGeometry.h"
#include "Applications/Device/SharpSurface.h"
#include "Screen/PictureReceiver.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

namespace farview
{

/// Draws a host's picture and its pointer, from the memory that the picture is received in.
class ScreenView final : public QWidget
{
public:
    /// `compositor` outlives it.
    explicit ScreenView(const Compositor& compositor);

    /// `picture` is read until the next begins or `endPicture` is called.
    void beginPicture(const PictureReceiver& picture);
    /// Draws at once what changed, as far as it can be seen. `drawn` is called on a later turn,
    /// when it was handed to the window system; a later frame replaces it.
    void showFrame(const std::vector<PixelRect>& changed, std::function<void()> drawn);
    /// Draws the pointer anew, on a later turn.
    void movePointer();
    void endPicture();
    bool hasPicture() const { return mPicture != nullptr; }
    QSize pictureSize() const;
    /// The picture as it was drawn last, which is what the user sees.
    const PicturePlace& drawnPlace() const { return mPlace; }
    /// Whether the host's pointer is drawn into the picture.
    bool drawsPointer() const { return mPicture && mPicture->cursor(); }

    /// The pixels to a point.
    double ratio() const { return mSharp ? mSharp->ratio() : devicePixelRatioF(); }
    /// Draws everything anew: the screen may have changed, or what lies over the upper edge.
    void followScreen();

    /// As large as there is room, else pixel for pixel.
    bool isFitted() const { return mIsFitted; }
    void setFitted(bool isFitted);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double paintedRatio() const;
    QRect paintedRect() const;
    void updatePainted(const QRegion& region);
    PicturePlace place() const;
    QRect pointerPart() const;
    QRegion inPoints(const std::vector<PixelRect>& parts) const;
    QRect inPoints(const QRect& pixels) const;
    void paint(QPainter& painter, const QRegion& region);
    void drawPart(QPainter& painter, const QRect& part) const;
    void tellDrawn();

    const Compositor& mCompositor;
    /// Instead of the widget; its window owns it.
    QPointer<SharpSurface> mSharp;
    const PictureReceiver* mPicture = nullptr;
    std::function<void()> mDrawn;
    PicturePlace mPlace; ///< as it was drawn last
    QRect mPointer;      ///< where it was drawn last, in points that are painted
    bool mIsFitted = true;
};

} // namespace farview
