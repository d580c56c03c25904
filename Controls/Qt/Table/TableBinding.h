#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Table/TableModel.h"

#include <QTableView>

namespace farview
{

class TableDragging;

/// A table. Columns are named by the widget's dynamic properties "column1", "columnTitle1" and so
/// on. The table's space folds away while it is hidden.
class TableBinding : public Binding
{
    Q_OBJECT

public:
    TableBinding(std::shared_ptr<TableView> table, QTableView* widget);

protected:
    void show(Change change) override;
    bool isHidden() const override;
    /// Alt and an arrow key move the row that has the keyboard.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void keepPlaceDuringReset();
    void moveCurrentRow(int step);

    std::shared_ptr<TableView> mTable;
    QTableView* mTableWidget;
    TableModel* mModel;
    TableDragging* mDragging;
    Subscription mScrollSubscription;
};

} // namespace farview
