#include "Controls/Qt/Accessible/AccessibleTable.h"

#include "Controls/Qt/Accessible/AccessibleTableParts.h"

namespace farview
{

AccessibleTable::AccessibleTable(QTableView* table)
    : QAccessibleWidget(table, QAccessible::Table), mTable(table)
{
}

AccessibleTable::~AccessibleTable() { forgetChildren(); }

void* AccessibleTable::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

int AccessibleTable::rowCount() const { return mTable->model() ? mTable->model()->rowCount() : 0; }

int AccessibleTable::columnCount() const
{
    return mTable->model() ? mTable->model()->columnCount() : 0;
}

int AccessibleTable::childCount() const { return (rowCount() + 1) * columnsWithHeader(); }

QAccessibleInterface* AccessibleTable::child(int index) const
{
    if (!mTable->model() || index < 0 || index >= childCount())
        return nullptr;
    const auto known = mChildren.find(index);
    auto* made = known == mChildren.end() ? nullptr : QAccessible::accessibleInterface(*known);
    if (made && made->isValid())
        return made;
    if (made)
        QAccessible::deleteAccessibleInterface(*known);
    made = make(index);
    mChildren[index] = QAccessible::registerAccessibleInterface(made);
    return made;
}

QAccessibleInterface* AccessibleTable::make(int index) const
{
    using Kind = AccessibleTableHeader::Kind;
    const int row = index / columnsWithHeader() - 1;
    const int column = index % columnsWithHeader() - 1;
    if (row >= 0 && column >= 0)
        return new AccessibleTableCell(mTable, mTable->model()->index(row, column));
    if (column >= 0)
        return new AccessibleTableHeader(mTable, Kind::column, column);
    return new AccessibleTableHeader(mTable, row >= 0 ? Kind::row : Kind::corner, row);
}

int AccessibleTable::indexOfChild(const QAccessibleInterface* child) const
{
    return mChildren.key(QAccessible::uniqueId(const_cast<QAccessibleInterface*>(child)), -1);
}

QAccessibleInterface* AccessibleTable::cellAt(int row, int column) const
{
    const bool isInside = row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
    return isInside ? child((row + 1) * columnsWithHeader() + column + 1) : nullptr;
}

QAccessibleInterface* AccessibleTable::childAt(int x, int y) const
{
    const QPoint place = mTable->viewport()->mapFromGlobal(QPoint(x, y));
    const QModelIndex index = mTable->indexAt(place);
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

QAccessibleInterface* AccessibleTable::focusChild() const
{
    const QModelIndex current = mTable->currentIndex();
    return current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
}

QString AccessibleTable::columnDescription(int column) const
{
    return mTable->model()->headerData(column, Qt::Horizontal).toString();
}

// The model is only ever changed as a whole.
void AccessibleTable::modelChange(QAccessibleTableModelChangeEvent* /*event*/) { forgetChildren(); }

void AccessibleTable::forgetChildren() const
{
    for (const QAccessible::Id child : qAsConst(mChildren))
        QAccessible::deleteAccessibleInterface(child);
    mChildren.clear();
}

} // namespace farview
