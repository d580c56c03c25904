#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QTableView>

namespace farview
{

/// Tells assistive technology what a table shows. The toolkit's own answer lets nobody tick a box
/// or move a row: here each cell has actions for that. As in the toolkit's answer, and as its
/// notices of focus count them, the children are the rows from the header down, each from its own
/// header on; headers that are not on the screen say so.
class AccessibleTable final : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit AccessibleTable(QTableView* table);
    ~AccessibleTable() override;

    void* interface_cast(QAccessible::InterfaceType type) override;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;

    QAccessibleInterface* cellAt(int row, int column) const override;
    int rowCount() const override;
    int columnCount() const override;
    QString columnDescription(int column) const override;
    QString rowDescription(int /*row*/) const override { return {}; }
    void modelChange(QAccessibleTableModelChangeEvent* event) override;

    // Nothing of it is ever selected.
    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    int selectedCellCount() const override { return 0; }
    QList<QAccessibleInterface*> selectedCells() const override { return {}; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int /*column*/) const override { return false; }
    bool isRowSelected(int /*row*/) const override { return false; }
    bool selectRow(int /*row*/) override { return false; }
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectRow(int /*row*/) override { return false; }
    bool unselectColumn(int /*column*/) override { return false; }

private:
    int columnsWithHeader() const { return columnCount() + 1; }
    QAccessibleInterface* make(int index) const;
    void forgetChildren() const;

    QTableView* mTable;
    mutable QHash<int, QAccessible::Id> mChildren;
};

} // namespace farview
