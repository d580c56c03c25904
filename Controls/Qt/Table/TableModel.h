#pragma once

#include "Controls/TableView.h"

#include <QAbstractTableModel>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// One column: the identifier that the data source knows, and the title that people read.
struct TableColumn {
    std::string identifier;
    QString title;
    /// How a box in the column is described to assistive technology, which is not told by itself.
    QString whenTicked;
    QString whenNotTicked;
};

/// Asks a table's data source for what the table shows. Every row is asked for anew after
/// `reload`; a reload that is asked for in the middle of an edit happens on the next turn, once.
class TableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    TableModel(std::weak_ptr<TableView> table, std::vector<TableColumn> columns, QObject* parent);

    void reload();

    /// As the table's own doors. While what is on show is older than what the source has, no row
    /// can be picked up, and none put down.
    std::optional<RowDrag> dragRow(int row);
    bool mayDrop(const RowDrag& drag, int gap);
    bool drop(const RowDrag& drag, int gap);
    /// The row changes places with the one above (-1) or below (1). False when it may not.
    bool moveRow(int row, int step);
    bool mayDelete(int row) const;
    bool deleteRow(int row);
    bool mayUndoDelete() const;
    bool undoDelete();

    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    /// Makes a change to the source. False when it made none.
    template <typename Edit> bool edit(Edit edit);
    bool isCurrent() const { return !mEditing && !mReloadPending; }
    void reset();
    CellValue cell(const QModelIndex& index) const;
    const TableColumn& column(const QModelIndex& index) const;
    std::string remark(const QModelIndex& index) const;
    QVariant lookOf(const QModelIndex& index, int role) const;

    std::weak_ptr<TableView> mTable;
    std::vector<TableColumn> mColumns;
    int mRows = 0;
    bool mEditing = false;
    bool mReloadPending = false;
};

} // namespace farview
