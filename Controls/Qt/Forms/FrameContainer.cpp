#include "Controls/Qt/Forms/FrameContainer.h"

#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Switch/WidgetAnimator.h"

#include <QEvent>
#include <QPropertyAnimation>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace farview
{
namespace
{

Rect frameOf(const QRect& geometry)
{
    return {{double(geometry.x()), double(geometry.y())},
            {double(geometry.width()), double(geometry.height())}};
}

int rounded(double value) { return static_cast<int>(std::lround(value)); }

/// Keeps one widget at the frame of its view.
class FrameBinding : public QObject
{
public:
    FrameBinding(std::shared_ptr<View> view, QWidget* widget, FrameContainer* container)
        : QObject(widget), mView(std::move(view)), mWidget(widget), mContainer(container),
          mAnimation(widget, "geometry")
    {
        mAnimation.setEasingCurve(easingCurve(Animation{}));
        mAnimation.setDuration(rounded(Animation::standardTime * 1000));
        mView->setFrame(frameOf(widget->geometry()), false);
        mSubscription = mView->observe([this](Change change) {
            if (change == Change::frame)
                place(mView->frameChangeIsAnimated());
        });
        connect(container, &FrameContainer::stretched, this, &FrameBinding::stretch);
        connect(container, &FrameContainer::mirrored, this, [this] { place(false); });
    }

private:
    void stretch(int byWidth, int height)
    {
        Rect frame = mView->frame();
        if (mWidget->property("trailing").toBool()) {
            frame.origin.x += byWidth;
            frame.origin.y = (height - frame.size.height) / 2;
        } else {
            frame.size.width += byWidth;
            frame.size.height = height - frame.origin.y;
        }
        mView->setFrame(frame, false);
        place(false);
    }

    void place(bool animated)
    {
        mAnimation.stop();
        if (!animated || !playsAnimations(*mWidget)) {
            mWidget->setGeometry(destination());
            return;
        }
        mAnimation.setStartValue(mWidget->geometry());
        mAnimation.setEndValue(destination());
        mAnimation.start();
    }

    QRect destination() const
    {
        const Rect frame = mView->frame();
        const QRect place(rounded(frame.origin.x), rounded(frame.origin.y),
                          std::max(0, rounded(frame.size.width)),
                          std::max(0, rounded(frame.size.height)));
        return QStyle::visualRect(mContainer->layoutDirection(), mContainer->rect(), place);
    }

    std::shared_ptr<View> mView;
    QWidget* mWidget;
    FrameContainer* mContainer;
    QPropertyAnimation mAnimation;
    Subscription mSubscription;
};

} // namespace

FrameContainer::FrameContainer(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void FrameContainer::hold(std::shared_ptr<View> view, QWidget* widget)
{
    new FrameBinding(std::move(view), widget, this);
}

int FrameContainer::designWidth() const
{
    int reach = 0;
    for (const QObject* child : children()) {
        if (const auto* widget = qobject_cast<const QWidget*>(child); widget && !widget->isWindow())
            reach = std::max(reach, widget->x() + widget->width());
    }
    return reach;
}

QSize FrameContainer::sizeHint() const { return {280, minimumSizeHint().height()}; }

QSize FrameContainer::minimumSizeHint() const
{
    QSize size(0, 0);
    for (const QObject* child : children()) {
        if (const auto* widget = qobject_cast<const QWidget*>(child); widget && !widget->isWindow())
            size = size.expandedTo(widget->minimumSizeHint());
    }
    return {size.width() * 2, size.height()};
}

bool FrameContainer::event(QEvent* event)
{
    // What is in it wants another size; what it wanted on a page in the back was told to nobody.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show)
        updateGeometry();
    return QWidget::event(event);
}

void FrameContainer::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (mToldWidth < 0)
        mToldWidth = designWidth();
    const int byWidth = width() - mToldWidth;
    mToldWidth = width();
    emit stretched(byWidth, height());
}

void FrameContainer::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        emit mirrored();
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        updateGeometry();
}

} // namespace farview
