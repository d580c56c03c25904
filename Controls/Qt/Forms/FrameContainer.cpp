#include "Controls/Qt/Forms/FrameContainer.h"

#include <QEvent>

#include <algorithm>

namespace farview
{

FrameContainer::FrameContainer(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
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
