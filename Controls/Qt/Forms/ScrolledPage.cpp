#include "Controls/Qt/Forms/ScrolledPage.h"

namespace farview
{

QSize ScrolledPage::sizeHint() const { return mTakesRoom ? QWidget::sizeHint() : QSize(0, 0); }

QSize ScrolledPage::minimumSizeHint() const
{
    return mTakesRoom ? QWidget::minimumSizeHint() : QSize(0, 0);
}

int ScrolledPage::heightForWidth(int width) const
{
    return mTakesRoom ? QWidget::heightForWidth(width) : -1;
}

void ScrolledPage::setVisible(bool visible)
{
    // The toolkit shows what is put into a scroller, and lays it out for that.
    QWidget::setVisible(visible && mTakesRoom);
}

} // namespace farview
