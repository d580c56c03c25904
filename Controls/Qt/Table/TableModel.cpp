#include "Controls/Qt/Table/TableModel.h"

#include "Controls/Qt/Text/PlainText.h"
#include "Controls/Qt/Text/TextColors.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace farview
{

TableModel::TableModel(std::weak_ptr<TableView> table, std::vector<TableColumn> columns,
                       QObject* parent)
    : QAbstractTableModel(parent), mTable(std::move(table)), mColumns(std::move(columns))
{
}

void TableModel::reload()
{
    if (!mEditing) {
        reset();
    } else if (!mReloadPending) {
        mReloadPending = true;
        QMetaObject::invokeMethod(
            this, [this] { reset(); }, Qt::QueuedConnection);
    }
}

void TableModel::reset()
{
    mReloadPending = false;
    beginResetModel();
    const auto table = mTable.lock();
    const auto source = table ? table->dataSource().lock() : nullptr;
    mRows = source ? std::max(0, source->numberOfRowsInTableView(*table)) : 0;
    endResetModel();
}

std::optional<RowDrag> TableModel::dragRow(int row)
{
    const auto table = mTable.lock();
    return table && isCurrent() ? table->userDrags(row) : std::nullopt;
}

bool TableModel::mayDrop(const RowDrag& drag, int gap)
{
    const auto table = mTable.lock();
    return table && isCurrent() && table->mayDrop(drag, gap);
}

template <typename Edit> bool TableModel::edit(Edit edit)
{
    const auto table = mTable.lock();
    if (!table || !isCurrent())
        return false;
    mEditing = true;
    const bool done = edit(*table);
    mEditing = false;
    return done;
}

bool TableModel::drop(const RowDrag& drag, int gap)
{
    return edit([&](TableView& table) { return table.userDrops(drag, gap); });
}

bool TableModel::moveRow(int row, int step)
{
    // The gap above the row before, or the one below the row after.
    const int gap = step < 0 ? row - 1 : row + 2;
    const auto drag = dragRow(row);
    return drag && drop(*drag, gap);
}

bool TableModel::mayDelete(int row) const
{
    const auto table = mTable.lock();
    return table && isCurrent() && table->userMayDelete(row);
}

bool TableModel::deleteRow(int row)
{
    return edit([&](TableView& table) { return table.userDeletes(row); });
}

bool TableModel::mayUndoDelete() const
{
    const auto table = mTable.lock();
    return table && isCurrent() && table->userMayUndoDelete();
}

bool TableModel::undoDelete()
{
    return edit([](TableView& table) { return table.userUndoesDelete(); });
}

int TableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : mRows; }

int TableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(mColumns.size());
}

CellValue TableModel::cell(const QModelIndex& index) const
{
    const auto table = mTable.lock();
    const auto source = table ? table->dataSource().lock() : nullptr;
    // The source may have fewer rows than when it was last counted: the reload is still to come.
    if (!index.isValid() || !source || index.row() >= source->numberOfRowsInTableView(*table))
        return {};
    return source->objectValueForTableColumn(*table, column(index).identifier, index.row());
}

const TableColumn& TableModel::column(const QModelIndex& index) const
{
    return mColumns[static_cast<std::size_t>(index.column())];
}

std::string TableModel::remark(const QModelIndex& index) const
{
    const auto table = mTable.lock();
    const auto source = table ? table->dataSource().lock() : nullptr;
    return source ? source->remarkOnRow(*table, index.row()) : std::string();
}

QVariant TableModel::data(const QModelIndex& index, int role) const
{
    const CellValue value = cell(index);
    const bool* flag = std::get_if<bool>(&value);
    const std::string* text = std::get_if<std::string>(&value);
    if (flag && role == Qt::CheckStateRole)
        return *flag ? Qt::Checked : Qt::Unchecked;
    if (flag && role == Qt::AccessibleTextRole)
        return headerData(index.column(), Qt::Horizontal, Qt::DisplayRole);
    if (flag && role == Qt::AccessibleDescriptionRole)
        return *flag ? column(index).whenTicked : column(index).whenNotTicked;
    if (text && role == Qt::DisplayRole)
        return plainLine(*text);
    if (text && role == Qt::ToolTipRole) {
        const std::string told = remark(index);
        return plainToolTip(told.empty() ? *text : *text + '\n' + told);
    }
    return text ? lookOf(index, role) : QVariant();
}

// Dimmed for the eye, slanted for the eye that tells no shades apart, in words for the ear.
QVariant TableModel::lookOf(const QModelIndex& index, int role) const
{
    const bool isAsked =
        role == Qt::ForegroundRole || role == Qt::FontRole || role == Qt::AccessibleDescriptionRole;
    const std::string told = isAsked ? remark(index) : std::string();
    if (told.empty())
        return {};
    if (role == Qt::AccessibleDescriptionRole)
        return plainLine(told);
    if (role == Qt::ForegroundRole)
        return secondaryText(QGuiApplication::palette());
    QFont slanted;
    slanted.setItalic(true);
    return slanted;
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return mColumns[static_cast<std::size_t>(section)].title;
}

Qt::ItemFlags TableModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags common = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return std::holds_alternative<bool>(cell(index)) ? common | Qt::ItemIsUserCheckable : common;
}

bool TableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const auto table = mTable.lock();
    const auto source = table ? table->dataSource().lock() : nullptr;
    if (role != Qt::CheckStateRole || mReloadPending || !std::holds_alternative<bool>(cell(index)))
        return false;
    const auto column = static_cast<std::size_t>(index.column());
    mEditing = true;
    source->setObjectValue(*table, value.toInt() == Qt::Checked, mColumns[column].identifier,
                           index.row());
    mEditing = false;
    return true;
}

} // namespace farview
