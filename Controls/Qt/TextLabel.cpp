#include "Controls/Qt/TextLabel.h"

#include <QEvent>
#include <QTimer>

#include <utility>

namespace farview
{
namespace
{

/// A window that is dragged to another size goes through many widths.
constexpr std::size_t mostWidths = 16;

} // namespace

int TextLabel::heightForWidth(int width) const
{
    Subject subject{text(), font(), margin(), indent(), wordWrap()};
    if (subject != mSubject || mHeights.size() >= mostWidths)
        mHeights.clear();
    mSubject = std::move(subject);
    const auto known = mHeights.find(width);
    if (known != mHeights.end())
        return known->second;
    return mHeights[width] = QLabel::heightForWidth(width);
}

bool TextLabel::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ContentsRectChange:
    case QEvent::FontChange:
    case QEvent::Polish:
    case QEvent::ScreenChangeInternal:
    case QEvent::StyleChange:
        mHeights.clear();
        break;
    default:
        break;
    }
    return QLabel::event(event);
}

void TextLabel::showEvent(QShowEvent* event)
{
    QLabel::showEvent(event);
    if (property("selectable").toBool())
        QTimer::singleShot(0, this, [this] { setTextInteractionFlags(Qt::TextSelectableByMouse); });
}

} // namespace farview
