#include "Controls/Qt/Forms/FrameBinding.h"

#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Switch/WidgetAnimator.h"

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

} // namespace

FrameBinding::FrameBinding(std::shared_ptr<View> view, QWidget* widget, FrameContainer* container)
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

void FrameBinding::stretch(int byWidth, int height)
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

void FrameBinding::place(bool animated)
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

QRect FrameBinding::destination() const
{
    const Rect frame = mView->frame();
    const QRect place(rounded(frame.origin.x), rounded(frame.origin.y),
                      std::max(0, rounded(frame.size.width)),
                      std::max(0, rounded(frame.size.height)));
    return QStyle::visualRect(mContainer->layoutDirection(), mContainer->rect(), place);
}

} // namespace farview
