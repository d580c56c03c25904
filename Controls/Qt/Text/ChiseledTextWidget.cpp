#include "Controls/Qt/Text/ChiseledTextWidget.h"

#include "Controls/Qt/Text/WidgetTextCanvas.h"

#include <QStyle>
#include <QStyleOptionFocusRect>

#include <cmath>

namespace farview
{
namespace
{

// Around the word: room for a finger, and for the frame that shows the focus.
constexpr int horizontalMargin = 8;
constexpr int verticalMargin = 5;

} // namespace

ChiseledTextWidget::ChiseledTextWidget(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ChiseledTextWidget::setButton(std::shared_ptr<const FVEChiseledTextButton> button)
{
    mButton = std::move(button);
    update();
}

QSize ChiseledTextWidget::sizeHint() const
{
    const double width =
        WidgetTextCanvas::width(text(), FVEChiseledTextButton::expansion(), fontMetrics());
    return {static_cast<int>(std::ceil(width)) + 2 * horizontalMargin,
            fontMetrics().lineSpacing() + 2 * verticalMargin};
}

void ChiseledTextWidget::paintEvent(QPaintEvent* /*event*/)
{
    if (!mButton || mButton->title().empty())
        return;
    QPainter painter(this);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
    WidgetTextCanvas canvas(painter, *this);
    mButton->drawRect(canvas.bounds(), canvas);
}

} // namespace farview
