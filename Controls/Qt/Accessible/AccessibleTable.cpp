#include "Controls/Qt/Accessible/AccessibleTable.h"

#include "Controls/Qt/Table/TableModel.h"

#include <QAccessibleInterface>
#include <QHeaderView>
#include <QPersistentModelIndex>
#include <QPointer>

namespace farview
{
namespace
{

/// What the parts of a table have in common: they live in it, and have nothing in them.
class AccessibleTablePart : public QAccessibleInterface
{
public:
    explicit AccessibleTablePart(QTableView* table) : mTable(table) {}

    bool isValid() const override { return mTable != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return mTable ? mTable->window()->windowHandle() : nullptr; }

    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(mTable);
    }

    int childCount() const override { return 0; }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

protected:
    QTableView& view() const { return *mTable; }
    /// A place in that part of the table, on the screen.
    static QRect onScreen(const QWidget& part, const QRect& place)
    {
        return {part.mapToGlobal(place.topLeft()), place.size()};
    }

private:
    QPointer<QTableView> mTable;
};

/// The header of a column, or of a row (never on the screen), or the corner between them.
class AccessibleTableHeader final : public AccessibleTablePart
{
public:
    enum class Kind { column, row, corner };

    AccessibleTableHeader(QTableView* table, Kind kind, int section)
        : AccessibleTablePart(table), mKind(kind), mSection(section)
    {
    }

    // --- headers ---

    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Name || mKind != Kind::column)
            return {};
        return view().model()->headerData(mSection, Qt::Horizontal).toString();
    }

    QRect rect() const override
    {
        const QHeaderView* header = view().horizontalHeader();
        if (mKind != Kind::column || header->isHidden())
            return {};
        const QRect place(header->sectionViewportPosition(mSection), 0,
                          header->sectionSize(mSection), header->height());
        return onScreen(*header->viewport(), place);
    }

    QAccessible::Role role() const override
    {
        switch (mKind) {
        case Kind::column:
            return QAccessible::ColumnHeader;
        case Kind::row:
            return QAccessible::RowHeader;
        case Kind::corner:
            break;
        }
        return QAccessible::Pane;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = rect().isEmpty() || !view().isVisible();
        return state;
    }

private:
    Kind mKind;
    int mSection;
};

/// A cell, with what can be done to it and to its row.
class AccessibleTableCell final : public AccessibleTablePart,
                                  public QAccessibleTableCellInterface,
                                  public QAccessibleActionInterface
{
public:
    AccessibleTableCell(QTableView* table, const QModelIndex& index)
        : AccessibleTablePart(table), mIndex(index)
    {
    }

    bool isValid() const override { return AccessibleTablePart::isValid() && mIndex.isValid(); }
    // --- cells ---

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableCellInterface)
            return static_cast<QAccessibleTableCellInterface*>(this);
        if (type == QAccessible::ActionInterface)
            return static_cast<QAccessibleActionInterface*>(this);
        return nullptr;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Description)
            return mIndex.data(Qt::AccessibleDescriptionRole).toString();
        if (kind != QAccessible::Name)
            return {};
        const QString told = mIndex.data(Qt::AccessibleTextRole).toString();
        return told.isEmpty() ? mIndex.data(Qt::DisplayRole).toString() : told;
    }

    QRect rect() const override { return onScreen(*view().viewport(), view().visualRect(mIndex)); }

    QAccessible::Role role() const override { return QAccessible::Cell; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        const QRect place = view().visualRect(mIndex);
        state.invisible = !view().isVisible();
        state.offscreen = !view().viewport()->rect().intersects(place);
        state.disabled = !view().isEnabled();
        state.focusable = true;
        state.focused = view().hasFocus() && view().currentIndex() == mIndex;
        state.checkable = isBox();
        state.checked = isBox() && mIndex.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        return state;
    }

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface*> columnHeaderCells() const override
    {
        // The corner comes first.
        return {parent()->child(mIndex.column() + 1)};
    }

    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return mIndex.column(); }
    int rowIndex() const override { return mIndex.row(); }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override
    {
        if (!view().isEnabled())
            return {};
        QStringList names;
        if (isBox())
            names += toggleAction();
        names += setFocusAction();
        const auto add = [&](bool isPossible, const char* action) {
            if (isPossible && !nameOf(action).isEmpty())
                names += nameOf(action);
        };
        add(mIndex.row() > 0, "moveUp");
        add(mIndex.row() + 1 < mIndex.model()->rowCount(), "moveDown");
        add(model() && model()->mayDelete(mIndex.row()), "deleteRow");
        add(model() && model()->mayUndoDelete(), "undoDelete");
        return names;
    }

    void doAction(const QString& name) override
    {
        if (!actionNames().contains(name))
            return;
        if (name == setFocusAction()) {
            view().setFocus();
            view().setCurrentIndex(mIndex);
        } else if (!model()) {
            return;
        } else if (name == toggleAction()) {
            const auto ticked = mIndex.data(Qt::CheckStateRole).toInt() == Qt::Checked;
            model()->setData(mIndex, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
        } else {
            changeRows(name);
        }
    }

    QStringList keyBindingsForAction(const QString& name) const override
    {
        if (name == nameOf("moveUp"))
            return {QKeySequence(Qt::ALT | Qt::Key_Up).toString()};
        if (name == nameOf("moveDown"))
            return {QKeySequence(Qt::ALT | Qt::Key_Down).toString()};
        if (name == nameOf("deleteRow"))
            return {QKeySequence(QKeySequence::Delete).toString()};
        if (name == nameOf("undoDelete"))
            return {QKeySequence(QKeySequence::Undo).toString()};
        return {};
    }

private:
    bool isBox() const { return mIndex.flags() & Qt::ItemIsUserCheckable; }
    /// What the form calls the action, named by a property of the table.
    QString nameOf(const char* action) const { return view().property(action).toString(); }
    TableModel* model() const { return qobject_cast<TableModel*>(view().model()); }
    void changeRows(const QString& name)
    {
        if (name == nameOf("deleteRow"))
            model()->deleteRow(mIndex.row());
        else if (name == nameOf("undoDelete"))
            model()->undoDelete();
        else
            model()->moveRow(mIndex.row(), name == nameOf("moveUp") ? -1 : 1);
    }

    QPersistentModelIndex mIndex;
};

} // namespace

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
