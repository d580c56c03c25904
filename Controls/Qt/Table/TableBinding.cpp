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
    connect(widget, &QWidget::customContextMenuRequested, this, &TableBinding::openMenu);
    keepPlaceDuringReset();
    mScrollSubscription =
        mTable->enclosingScrollView().observe([this](Change change) { refresh(change); });
}

void TableBinding::layOut()
{
    mTableWidget->setModel(mModel);
    mTableWidget->setSelectionMode(QAbstractItemView::NoSelection);
    mTableWidget->setWordWrap(false);
    if (!mTableWidget->property("deleteRow").isNull())
        mTableWidget->setContextMenuPolicy(Qt::CustomContextMenu);
    mTableWidget->verticalHeader()->hide();
    auto* header = mTableWidget->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    header->setMinimumSectionSize(mTableWidget->fontMetrics().averageCharWidth() * 14);
    const int wide = mTableWidget->property("wideColumn").toInt();
    header->setStretchLastSection(wide == 0);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    if (wide > 0)
        header->setSectionResizeMode(wide - 1, QHeaderView::Stretch);
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
        cancelGestures();
}

void TableBinding::cancelGestures()
{
    mDragging->cancel();
    if (mMenu)
        mMenu->close();
}

bool TableBinding::eventFilter(QObject* watched, QEvent* event)
{
    const bool isHandled =
        event->type() == QEvent::KeyPress && handleKey(*static_cast<QKeyEvent*>(event));
    return isHandled || Binding::eventFilter(watched, event);
}

bool TableBinding::handleKey(QKeyEvent& key)
{
    const int row = mTableWidget->currentIndex().row();
    const bool isArrow = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
    if (isArrow && key.modifiers() & Qt::AltModifier)
        moveCurrentRow(key.key() == Qt::Key_Up ? -1 : 1);
    else if (key.matches(QKeySequence::Delete))
        mModel->deleteRow(row);
    else if (key.matches(QKeySequence::Undo))
        mModel->undoDelete();
    else
        return false;
    return true;
}

void TableBinding::moveCurrentRow(int step)
{
    const QModelIndex current = mTableWidget->currentIndex();
    if (!mModel->moveRow(current.row(), step))
        return;
    mTableWidget->setCurrentIndex(mModel->index(current.row() + step, current.column()));
}

void TableBinding::openMenu(QPoint place)
{
    const QModelIndex index = mTableWidget->indexAt(place);
    if (index.isValid())
        mTableWidget->setCurrentIndex(index);
    const int row = index.row();
    mMenu = new QMenu(mTableWidget);
    mMenu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [this](const char* title, QKeySequence::StandardKey key, bool isPossible,
                            auto operation) {
        QAction* action =
            mMenu->addAction(mTableWidget->property(title).toString(), this, operation);
        action->setShortcut(key);
        action->setEnabled(isPossible);
    };
    add("deleteRow", QKeySequence::Delete, mModel->mayDelete(row),
        [this, row] { mModel->deleteRow(row); });
    add("undoDelete", QKeySequence::Undo, mModel->mayUndoDelete(),
        [this] { mModel->undoDelete(); });
    mMenu->popup(mTableWidget->viewport()->mapToGlobal(place));
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
