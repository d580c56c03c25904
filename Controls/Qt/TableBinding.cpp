#include "Controls/Qt/TableBinding.h"

#include "Controls/Qt/PlainText.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace farview
{
namespace
{

QString numbered(const char* name, int number)
{
    return QString::fromLatin1(name) + QString::number(number);
}

std::vector<TableColumn> columnsOf(const QWidget& widget)
{
    std::vector<TableColumn> columns;
    const auto text = [&](const char* name, int number) {
        return widget.property(numbered(name, number).toLatin1().constData()).toString();
    };
    for (int number = 1; !text("column", number).isEmpty(); ++number)
        columns.push_back({text("column", number).toStdString(), text("columnTitle", number)});
    return columns;
}

} // namespace

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

bool TableModel::moveRow(int row, int gap)
{
    const auto table = mTable.lock();
    if (!table || mEditing || mReloadPending)
        return false;
    mEditing = true;
    const bool moved = table->userMovesRow(row, gap);
    mEditing = false;
    return moved;
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
    const auto column = static_cast<std::size_t>(index.column());
    return source->objectValueForTableColumn(*table, mColumns[column].identifier, index.row());
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
    if (text && role == Qt::DisplayRole)
        return plainLine(*text);
    if (text && role == Qt::ToolTipRole)
        return plainToolTip(*text);
    return {};
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

TableBinding::TableBinding(std::shared_ptr<TableView> table, QTableView* widget)
    : Binding(table, widget), mTable(std::move(table)), mTableWidget(widget),
      mModel(new TableModel(mTable, columnsOf(*widget), this))
{
    letSpaceFold();
    widget->setModel(mModel);
    widget->setSelectionMode(QAbstractItemView::NoSelection);
    widget->setWordWrap(false);
    widget->verticalHeader()->hide();
    widget->horizontalHeader()->setHighlightSections(false);
    widget->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    widget->horizontalHeader()->setMinimumSectionSize(widget->fontMetrics().averageCharWidth() *
                                                      14);
    widget->horizontalHeader()->setStretchLastSection(true);
    widget->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    widget->installEventFilter(this);
    keepPlaceDuringReset();
    mScrollSubscription =
        mTable->enclosingScrollView().observe([this](Change change) { refresh(change); });
}

bool TableBinding::isHidden() const
{
    return mTable->isHidden() || mTable->enclosingScrollView().isHidden();
}

void TableBinding::show(Change change)
{
    if (change == Change::rows)
        mModel->reload();
}

bool TableBinding::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return Binding::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isArrow = key->key() == Qt::Key_Up || key->key() == Qt::Key_Down;
    if (!isArrow || !(key->modifiers() & Qt::AltModifier))
        return Binding::eventFilter(watched, event);
    moveCurrentRow(key->key() == Qt::Key_Up ? -1 : 1);
    return true;
}

void TableBinding::moveCurrentRow(int step)
{
    const QModelIndex current = mTableWidget->currentIndex();
    // The gap above the row before, or the one below the row after.
    const int gap = step < 0 ? current.row() - 1 : current.row() + 2;
    if (!current.isValid() || !mModel->moveRow(current.row(), gap))
        return;
    mTableWidget->setCurrentIndex(mModel->index(current.row() + step, current.column()));
}

void TableBinding::keepPlaceDuringReset()
{
    connect(mModel, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        const QModelIndex current = mTableWidget->currentIndex();
        const int scrolled = mTableWidget->verticalScrollBar()->value();
        const auto restore = [this, row = current.row(), column = current.column(), scrolled] {
            const int last = mModel->rowCount({}) - 1;
            if (row >= 0 && last >= 0)
                mTableWidget->setCurrentIndex(mModel->index(std::min(row, last), column));
            mTableWidget->verticalScrollBar()->setValue(scrolled);
        };
        connect(mModel, &QAbstractItemModel::modelReset, this, restore,
                static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::SingleShotConnection));
    });
}

} // namespace farview
