#include "Controls/Qt/Forms/PageScroller.h"

#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace farview
{
namespace
{

constexpr int lowest = 120; // below that, scrolling is no way to read

} // namespace

PageScroller::PageScroller(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
}

QSize PageScroller::sizeHint() const
{
    if (!widget())
        return QScrollArea::sizeHint();
    const QSize hint = widget()->sizeHint();
    const int height = std::max(hint.height(), widget()->heightForWidth(hint.width()));
    return {hint.width() + verticalScrollBar()->sizeHint().width(), height};
}

QSize PageScroller::minimumSizeHint() const
{
    if (!widget())
        return QScrollArea::minimumSizeHint();
    const int bar = verticalScrollBar()->sizeHint().width();
    return {widget()->minimumSizeHint().width() + bar, lowest};
}

void PageScroller::showEvent(QShowEvent* event)
{
    // The toolkit gives the page a ground when it becomes the area's.
    if (widget())
        widget()->setAutoFillBackground(false);
    QScrollArea::showEvent(event);
}

bool PageScroller::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

} // namespace farview
