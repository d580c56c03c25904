#pragma once

#include "Controls/Qt/Binding.h"

#include <QPropertyAnimation>

namespace farview
{

class FrameContainer;

/// The frame of a view in a `FrameContainer`: the view's frame is where the widget goes (mirrored
/// when reading from right to left), and grows and shrinks with the container. A widget with the
/// dynamic property "trailing" keeps its size and moves along with the far edge instead.
class FrameBinding : public QObject
{
    Q_OBJECT

public:
    FrameBinding(std::shared_ptr<View> view, QWidget* widget, FrameContainer* container);

private:
    void stretch(int byWidth, int height);
    void place(bool animated);
    QRect destination() const;

    std::shared_ptr<View> mView;
    QWidget* mWidget;
    FrameContainer* mContainer;
    QPropertyAnimation mAnimation;
    Subscription mSubscription;
};

} // namespace farview
