#include "Controls/Qt/Table/TableBinding.h"

#include "Controls/Qt/Table/TableDragging.h"

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
        columns.push_back({text("column", number).toStdString(), text("columnTitle", number),
                           text("columnTicked", number), text("columnNotTicked", number)});
    return columns;
}

} // namespace

TableBinding::TableBinding(std::shared_ptr<TableView> table, QTableView* widget)
    : Binding(table, widget), mTable(std::move(table)), mTableWidget(widget),
      mModel(new TableModel(mTable, columnsOf(*widget), this)),
      mDragging(new TableDragging(mTable, *mModel, widget))
{
    letSpaceFold();
    layOut();
    widget->installEventFilter(this);
    keepPlaceDuringReset();
    mScrollSubscription =
        mTable->enclosingScrollView().observe([this](Change change) { refresh(change); });
}

void TableBinding::layOut()
{
    mTableWidget->setModel(mModel);
    mTableWidget->setSelectionMode(QAbstractItemView::NoSelection);
    mTableWidget->setWordWrap(false);
    mTableWidget->verticalHeader()->hide();
    auto* header = mTableWidget->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    header->setMinimumSectionSize(mTableWidget->fontMetrics().averageCharWidth() * 14);
    header->setStretchLastSection(true);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    // Only rows in sight are measured, however long the list is.
    header->setResizeContentsPrecision(0);
}

bool TableBinding::isHidden() const
{
    return mTable->isHidden() || mTable->enclosingScrollView().isHidden();
}

void TableBinding::show(Change change)
{
    if (change == Change::rows)
        mModel->reload();
    if (change == Change::rows || isHidden() || !mTable->isEnabled())
        mDragging->cancel();
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
    if (!mModel->moveRow(current.row(), step))
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
