#include "Controls/Qt/Forms/PageScroller.h"

#include "Controls/Qt/Forms/ScrolledPage.h"

#include <QEvent>
#include <QScrollBar>
#include <QStackedWidget>

#include <algorithm>

namespace farview
{
namespace
{

constexpr int lowest = 120; // below that, scrolling is no way to read

/// Whether no other tab stands before it.
bool isInFront(const QWidget& widget)
{
    const QWidget* inner = &widget;
    for (const QWidget* outer = inner->parentWidget(); outer; outer = inner->parentWidget()) {
        if (const auto* stack = qobject_cast<const QStackedWidget*>(outer))
            return stack->currentWidget() == inner;
        inner = outer;
    }
    return true;
}

} // namespace

PageScroller::PageScroller(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
}

QSize PageScroller::sizeHint() const
{
    if (!widget())
        return QScrollArea::sizeHint();
    letPageTakeRoom();
    const QSize hint = widget()->sizeHint();
    const int height = std::max(hint.height(), widget()->heightForWidth(hint.width()));
    return {hint.width() + verticalScrollBar()->sizeHint().width(), height};
}

QSize PageScroller::minimumSizeHint() const
{
    if (!widget())
        return QScrollArea::minimumSizeHint();
    letPageTakeRoom();
    const int bar = verticalScrollBar()->sizeHint().width();
    return {widget()->minimumSizeHint().width() + bar, lowest};
}

void PageScroller::showEvent(QShowEvent* event)
{
    // The toolkit gives the page a ground when it becomes the area's.
    if (widget())
        widget()->setAutoFillBackground(false);
    fitPage();
    QScrollArea::showEvent(event);
    updateGeometry();
}

void PageScroller::resizeEvent(QResizeEvent* event)
{
    fitPage();
    QScrollArea::resizeEvent(event);
}

bool PageScroller::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

/// A page behind another tab takes its room when it comes to the front.
bool PageScroller::letPageTakeRoom() const
{
    const bool inFront = widget() && isInFront(*this);
    if (auto* page = qobject_cast<ScrolledPage*>(widget()); page && inFront)
        page->takeRoom();
    return inFront;
}

/// Not sooner: the toolkit lays out what it fits, and what it shows.
void PageScroller::fitPage()
{
    if (!letPageTakeRoom())
        return;
    setWidgetResizable(true);
    widget()->show();
}

} // namespace farview
