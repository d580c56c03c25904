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

QString AccessibleTableCell::moveName(int step) const
{
    return view().property(step < 0 ? "moveUp" : "moveDown").toString();
}

QStringList AccessibleTableCell::actionNames() const
{
    if (!view().isEnabled())
        return {};
    QStringList names;
    if (isBox())
        names += toggleAction();
    names += setFocusAction();
    if (mIndex.row() > 0 && !moveName(-1).isEmpty())
        names += moveName(-1);
    if (mIndex.row() + 1 < mIndex.model()->rowCount() && !moveName(1).isEmpty())
        names += moveName(1);
    return names;
}

void AccessibleTableCell::doAction(const QString& name)
{
    if (!actionNames().contains(name))
        return;
    auto* model = qobject_cast<TableModel*>(view().model());
    if (name == setFocusAction()) {
        view().setFocus();
        view().setCurrentIndex(mIndex);
    } else if (!model) {
        return;
    } else if (name == toggleAction()) {
        const auto ticked = mIndex.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        model->setData(mIndex, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    } else {
        model->moveRow(mIndex.row(), name == moveName(-1) ? -1 : 1);
    }
}

QStringList AccessibleTableCell::keyBindingsForAction(const QString& name) const
{
    if (name == moveName(-1))
        return {QKeySequence(Qt::ALT | Qt::Key_Up).toString()};
    if (name == moveName(1))
        return {QKeySequence(Qt::ALT | Qt::Key_Down).toString()};
    return {};
}

} // namespace farview
