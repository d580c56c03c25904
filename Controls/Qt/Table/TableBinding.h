#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Table/TableModel.h"

#include <QMenu>
#include <QPointer>
#include <QTableView>

namespace farview
{

class TableDragging;

/// A table. Columns are named by the widget's dynamic properties "column1", "columnTitle1" and so
/// on, what can be done to a row by "deleteRow" and "undoDelete". The table's space folds away
/// while it is hidden.
class TableBinding : public Binding
{
    Q_OBJECT

public:
    TableBinding(std::shared_ptr<TableView> table, QTableView* widget);

protected:
    void show(Change change) override;
    bool isHidden() const override;
    /// Alt and an arrow key move the row that has the keyboard, Delete takes it off the list, and
    /// Ctrl+Z brings it back.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void keepPlaceDuringReset();
    bool handleKey(QKeyEvent& key);
    void moveCurrentRow(int step);
    void openMenu(QPoint place);
    /// The rows are others now, or cannot be operated: what was begun with them ends.
    void cancelGestures();

    std::shared_ptr<TableView> mTable;
    QTableView* mTableWidget;
    TableModel* mModel;
    TableDragging* mDragging;
    QPointer<QMenu> mMenu; ///< what can be done to a row; deletes itself
    Subscription mScrollSubscription;
};

} // namespace farview
