#include "Controls/Qt/Text/TextLabel.h"

#include <QEvent>
#include <QFontMetrics>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// A window that is dragged to another size goes through many widths.
constexpr std::size_t mostWidths = 16;

// The toolkit's measures.
constexpr int boundlessWidth = 2000; // for a text that does not wrap
constexpr int mostCharacters = 80;   // in a line

} // namespace

QSize TextLabel::sizeHint() const { return isPlain() ? hints().best : QLabel::sizeHint(); }

QSize TextLabel::minimumSizeHint() const
{
    return isPlain() ? hints().least : QLabel::minimumSizeHint();
}

int TextLabel::heightForWidth(int width) const
{
    forgetWhatChanged();
    if (mHeights.size() >= mostWidths)
        mHeights.clear();
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
        mHints.reset();
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

void TextLabel::forgetWhatChanged() const
{
    Subject subject{text(),   font(),        contentsMargins(), margin(),
                    indent(), minimumSize(), maximumSize(),     wordWrap()};
    if (subject == mSubject)
        return;
    mSubject = std::move(subject);
    mHints.reset();
    mHeights.clear();
}

/// Lines of characters with a margin, and nothing that only the toolkit knows: markup, underlined
/// letters, tabs, what a document shows, a frame, a width that is set.
bool TextLabel::isPlain() const
{
    const QString shown = text();
    const bool hasMarkup = textFormat() != Qt::PlainText &&
                           (textFormat() != Qt::AutoText || Qt::mightBeRichText(shown));
    return !shown.isEmpty() && !hasMarkup && !shown.contains(u'\t') && !buddy() && indent() <= 0 &&
           frameWidth() == 0 && minimumWidth() == 0 &&
           !(textInteractionFlags() & Qt::TextSelectableByMouse);
}

const TextLabel::Hints& TextLabel::hints() const
{
    ensurePolished();
    forgetWhatChanged();
    if (!mHints)
        mHints = ownHints();
    return *mHints;
}

TextLabel::Hints TextLabel::ownHints() const
{
    const QMargins margins = contentsMargins() + margin();
    const QSize around(margins.left() + margins.right(), margins.top() + margins.bottom());
    const TextRoom room = bestRoom(around.width());
    // Where nothing has to wrap, a paragraph is one line.
    const int lowest = text().contains(u'\n')
                           ? std::min(roomAt(QWIDGETSIZE_MAX).size.height(), room.size.height())
                           : room.tallestLine;
    return {(room.size + around).expandedTo(minimumSize()),
            (QSize(room.widestWord, lowest) + around).expandedTo(minimumSize())};
}

TextRoom TextLabel::roomAt(int width) const
{
    return measureText(text(), font(), this, wordWrap(), width);
}

/// A text that wraps likes lines of readable length, and rather several of them than one long one.
TextRoom TextLabel::bestRoom(int around) const
{
    if (!wordWrap())
        return roomAt(boundlessWidth - around);
    const QFontMetrics metrics = fontMetrics();
    const int longest =
        std::min(metrics.averageCharWidth() * mostCharacters, maximumWidth()) - around;
    TextRoom room = roomAt(longest);
    if (room.size.height() < 4 * metrics.lineSpacing() && room.size.width() > longest / 2)
        room = roomAt(longest / 2);
    if (room.size.height() < 2 * metrics.lineSpacing() && room.size.width() > longest / 4)
        room = roomAt(longest / 4);
    return room;
}

} // namespace farview
