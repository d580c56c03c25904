#include "Tests/Window/TextFaults.h"

#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"

#include <QAbstractScrollArea>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTabBar>
#include <QTableView>

#include <algorithm>

namespace farview::test
{
namespace
{

QString sizeText(const QSize& size)
{
    return QString::number(size.width()) + u"x"_qs + QString::number(size.height());
}

class Examination
{
public:
    Examination(const QWidget& window, const QStringList& foreign)
        : mWindow(window), mForeign(foreign)
    {
        for (const auto* each : window.findChildren<QWidget*>()) {
            if (each->isVisible() && each->window() == &window && isPart(*each))
                mParts += each;
        }
    }

    QStringList faults()
    {
        for (const auto* each : mParts) {
            examineRoom(*each);
            examinePlace(*each);
        }
        examineNeighbours();
        return mFaults;
    }

private:
    /// What is seen by itself; everything else only holds such parts.
    static bool isPart(const QWidget& widget)
    {
        const bool isOwn = !widget.objectName().isEmpty() &&
                           !widget.objectName().startsWith(u"qt_") &&
                           !widget.objectName().startsWith(u"Scroll");
        return qobject_cast<const QTabBar*>(&widget) ||
               (isOwn && (qobject_cast<const QLabel*>(&widget) ||
                          qobject_cast<const QAbstractButton*>(&widget) ||
                          qobject_cast<const SwitchWidget*>(&widget) ||
                          qobject_cast<const SpinnerWidget*>(&widget) ||
                          qobject_cast<const ScreenMapWidget*>(&widget) ||
                          qobject_cast<const QTableView*>(&widget) ||
                          qobject_cast<const QLineEdit*>(&widget)));
    }

    void examineRoom(const QWidget& widget)
    {
        if (const auto* label = qobject_cast<const QLabel*>(&widget))
            examineLabel(*label);
        else if (const auto* popUp = qobject_cast<const PopUpWidget*>(&widget))
            expectRoom(widget, mForeign.contains(popUp->title()) ? popUp->minimumSizeHint()
                                                                 : popUp->sizeHint());
        else if (const auto* table = qobject_cast<const QTableView*>(&widget))
            examineTable(*table);
        else if (qobject_cast<const SpinnerWidget*>(&widget))
            return; // as large as its place
        else if (qobject_cast<const QLineEdit*>(&widget))
            expectRoom(widget, widget.minimumSizeHint());
        else
            expectRoom(widget, widget.sizeHint());
    }

    void examineLabel(const QLabel& label)
    {
        if (label.text().isEmpty())
            return;
        if (!label.wordWrap())
            return expectRoom(label, label.sizeHint());
        expectRoom(label, {longestWord(label), label.heightForWidth(label.width())});
    }
    static int longestWord(const QLabel& label)
    {
        int longest = 0;
        for (const QString& word : label.text().split(u' '))
            longest = std::max(longest,
                               isBreakable(word) ? 0 : label.fontMetrics().horizontalAdvance(word));
        return longest;
    }
    /// Japanese and Chinese are written without blanks, and lines may end after any letter.
    static bool isBreakable(const QString& word)
    {
        return std::any_of(word.begin(), word.end(),
                           [](QChar letter) { return letter.unicode() >= 0x2E80; });
    }

    void examineTable(const QTableView& table)
    {
        const auto* header = table.horizontalHeader();
        for (int column = 0; header->isVisible() && column < header->count(); ++column)
            expectRoom(table, {header->sectionSizeHint(column), header->sizeHint().height()},
                       {header->sectionSize(column), header->height()});
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            const QModelIndex name = table.model()->index(row, table.model()->columnCount() - 1);
            const QSize needed = table.sizeHintForIndex(name);
            const bool mayEnd = mForeign.contains(name.data().toString());
            expectRoom(table, {mayEnd ? 0 : needed.width(), needed.height()},
                       {table.columnWidth(name.column()), table.rowHeight(row)});
        }
    }

    void expectRoom(const QWidget& widget, const QSize& needed)
    {
        expectRoom(widget, needed, widget.size());
    }
    void expectRoom(const QWidget& widget, const QSize& needed, const QSize& has)
    {
        if (needed.width() > has.width() || needed.height() > has.height())
            mFaults += widget.objectName() + u" needs "_qs + sizeText(needed) + u" and has "_qs +
                       sizeText(has);
    }

    /// Where the part is in the window, without what is scrolled out of sight.
    QRect inSight(const QWidget& part) const
    {
        QRect place(part.mapTo(&mWindow, QPoint(0, 0)), part.size());
        for (const QWidget* each = part.parentWidget(); each != &mWindow;
             each = each->parentWidget())
            place &= QRect(each->mapTo(&mWindow, QPoint(0, 0)), each->size());
        return place;
    }
    /// What scrolls up and down is as high as it likes; to the sides everything must be in sight.
    void examinePlace(const QWidget& part)
    {
        const QWidget* inner = &part;
        while (inner != &mWindow) {
            const QWidget* outer = inner->parentWidget();
            QRect place(inner->mapTo(outer, QPoint(0, 0)), inner->size());
            if (isScrolled(*inner)) {
                place.setTop(0);
                place.setHeight(1);
            }
            if (!outer->rect().contains(place)) {
                mFaults += part.objectName() + u" reaches out of "_qs + outer->objectName() +
                           u" ("_qs + QString::fromLatin1(outer->metaObject()->className()) +
                           u")"_qs;
                return;
            }
            inner = outer;
        }
    }
    static bool isScrolled(const QWidget& widget)
    {
        const auto* area =
            qobject_cast<const QAbstractScrollArea*>(widget.parentWidget()->parentWidget());
        return area && area->viewport() == widget.parentWidget() &&
               area->verticalScrollBarPolicy() != Qt::ScrollBarAlwaysOff;
    }

    void examineNeighbours()
    {
        for (qsizetype i = 0; i < mParts.size(); ++i) {
            for (qsizetype j = i + 1; j < mParts.size(); ++j) {
                const bool isInside =
                    mParts[i]->isAncestorOf(mParts[j]) || mParts[j]->isAncestorOf(mParts[i]);
                if (!isInside && inSight(*mParts[i]).intersects(inSight(*mParts[j])))
                    mFaults +=
                        mParts[i]->objectName() + u" lies over "_qs + mParts[j]->objectName();
            }
        }
    }

    const QWidget& mWindow;
    const QStringList& mForeign;
    QList<const QWidget*> mParts;
    QStringList mFaults;
};

} // namespace

QStringList textFaults(const QWidget& window, const QStringList& foreign)
{
    return Examination(window, foreign).faults();
}

} // namespace farview::test
