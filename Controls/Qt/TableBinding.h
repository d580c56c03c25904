#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/TableView.h"

#include <QAbstractTableModel>
#include <QTableView>

#include <vector>

namespace farview
{

/// One column: the identifier that the data source knows, and the title that people read.
struct TableColumn {
    std::string identifier;
    QString title;
};

/// Asks a table's data source for what the table shows. Every row is asked for anew after
/// `reload`; a reload that is asked for in the middle of an edit happens on the next turn, once.
class TableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    TableModel(std::weak_ptr<TableView> table, std::vector<TableColumn> columns, QObject* parent);

    void reload();
    /// Carries a row into the gap above `gap`, if the source lets it. False also while the table
    /// shows an older state than its source has.
    bool moveRow(int row, int gap);

    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    void reset();
    CellValue cell(const QModelIndex& index) const;

    std::weak_ptr<TableView> mTable;
    std::vector<TableColumn> mColumns;
    int mRows = 0;
    bool mEditing = false;
    bool mReloadPending = false;
};

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
    void keepPlaceDuringReset();
    void moveCurrentRow(int step);

    std::shared_ptr<TableView> mTable;
    QTableView* mTableWidget;
    TableModel* mModel;
    Subscription mScrollSubscription;
};

} // namespace farview
