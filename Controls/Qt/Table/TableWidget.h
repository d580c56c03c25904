#pragma once

#include <QHeaderView>
#include <QTableView>

#include <algorithm>

namespace farview
{

/// The table of an interface file: a table view that assistive technology can operate cell by
/// cell. The dynamic properties "moveUp", "moveDown", "deleteRow" and "undoDelete" name what can be
/// done to a row. It wants no more room than it needs at least, and takes whatever is left; with
/// the dynamic property "mostRows" it is as high as its rows, at most so many.
class TableWidget : public QTableView
{
    Q_OBJECT

public:
    using QTableView::QTableView;

    QSize sizeHint() const override
    {
        const int most = property("mostRows").toInt();
        return {QTableView::sizeHint().width(), most > 0 ? heightOfRows(most) : minimumHeight()};
    }
    QSize minimumSizeHint() const override
    {
        return property("mostRows").isNull() ? QTableView::minimumSizeHint() : sizeHint();
    }
    void reset() override
    {
        QTableView::reset();
        updateGeometry();
    }

private:
    int heightOfRows(int most) const
    {
        const int rows = std::min(model() ? model()->rowCount() : 0, most);
        return rows * verticalHeader()->defaultSectionSize() + horizontalHeader()->height() +
               2 * frameWidth();
    }
};

} // namespace farview
