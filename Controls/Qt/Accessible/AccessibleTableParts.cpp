#include "Controls/Qt/Accessible/AccessibleTableParts.h"

#include "Controls/Qt/Table/TableModel.h"

#include <QHeaderView>

namespace farview
{

QWindow* AccessibleTablePart::window() const
{
    return mTable ? mTable->window()->windowHandle() : nullptr;
}

QAccessibleInterface* AccessibleTablePart::parent() const
{
    return QAccessible::queryAccessibleInterface(mTable);
}

QRect AccessibleTablePart::onScreen(const QWidget& part, const QRect& place)
{
    return {part.mapToGlobal(place.topLeft()), place.size()};
}

// --- headers ---

QString AccessibleTableHeader::text(QAccessible::Text kind) const
{
    if (kind != QAccessible::Name || mKind != Kind::column)
        return {};
    return view().model()->headerData(mSection, Qt::Horizontal).toString();
}

QRect AccessibleTableHeader::rect() const
{
    const QHeaderView* header = view().horizontalHeader();
    if (mKind != Kind::column || header->isHidden())
        return {};
    const QRect place(header->sectionViewportPosition(mSection), 0, header->sectionSize(mSection),
                      header->height());
    return onScreen(*header->viewport(), place);
}

QAccessible::Role AccessibleTableHeader::role() const
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

QAccessible::State AccessibleTableHeader::state() const
{
    QAccessible::State state;
    state.invisible = rect().isEmpty() || !view().isVisible();
    return state;
}

// --- cells ---

void* AccessibleTableCell::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface*>(this);
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface*>(this);
    return nullptr;
}

QString AccessibleTableCell::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Description)
        return mIndex.data(Qt::AccessibleDescriptionRole).toString();
    if (kind != QAccessible::Name)
        return {};
    const QString told = mIndex.data(Qt::AccessibleTextRole).toString();
    return told.isEmpty() ? mIndex.data(Qt::DisplayRole).toString() : told;
}

QRect AccessibleTableCell::rect() const
{
    return onScreen(*view().viewport(), view().visualRect(mIndex));
}

QAccessible::State AccessibleTableCell::state() const
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

QList<QAccessibleInterface*> AccessibleTableCell::columnHeaderCells() const
{
    // The corner comes first.
    return {parent()->child(mIndex.column() + 1)};
}

bool AccessibleTableCell::isBox() const { return mIndex.flags() & Qt::ItemIsUserCheckable; }

TableModel* AccessibleTableCell::model() const { return qobject_cast<TableModel*>(view().model()); }

QStringList AccessibleTableCell::actionNames() const
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

void AccessibleTableCell::doAction(const QString& name)
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

void AccessibleTableCell::changeRows(const QString& name)
{
    if (name == nameOf("deleteRow"))
        model()->deleteRow(mIndex.row());
    else if (name == nameOf("undoDelete"))
        model()->undoDelete();
    else
        model()->moveRow(mIndex.row(), name == nameOf("moveUp") ? -1 : 1);
}

QStringList AccessibleTableCell::keyBindingsForAction(const QString& name) const
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

} // namespace farview
