#pragma once

#include <QTableView>

namespace farview
{

/// The table of an interface file: a table view that assistive technology can operate cell by
/// cell. The dynamic properties "moveUp", "moveDown", "deleteRow" and "undoDelete" name what can be
/// done to a row. It wants no more room than it needs at least, and takes whatever is left.
class TableWidget : public QTableView
{
    Q_OBJECT

public:
    using QTableView::QTableView;

    QSize sizeHint() const override { return {QTableView::sizeHint().width(), minimumHeight()}; }
};

} // namespace farview
