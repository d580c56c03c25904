#include "Controls/Qt/Table/TableDragging.h"

#include "Controls/Qt/Table/RunningDrag.h"

#include <QApplication>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <chrono>

namespace farview
{
namespace
{

constexpr int lineHeight = 2;
constexpr std::chrono::milliseconds scrollPause{80}; // a dozen rows in a second

QWidget* makeLine(QWidget* parent)
{
    auto* line = new QWidget(parent);
    line->setObjectName(u"dropLine"_qs);
    line->setAttribute(Qt::WA_TransparentForMouseEvents);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(QPalette::Highlight);
    line->hide();
    return line;
}

} // namespace

TableDragging::TableDragging(std::shared_ptr<TableView> table, TableModel& model,
                             QTableView* widget)
    : QObject(widget), mTable(std::move(table)), mModel(model), mWidget(widget),
      mLine(makeLine(widget->viewport()))
{
    widget->viewport()->setAcceptDrops(true);
    widget->viewport()->installEventFilter(this);
}

TableDragging::~TableDragging()
{
    if (mRunning)
        mRunning->cancel();
}

void TableDragging::cancel()
{
    // What was dropped is past cancelling.
    if (!mRunning || !mDrag)
        return;
    mRunning->cancel();
    // The toolkit keeps a plain pointer to what the drag is over until the drag leaves it, and this
    // may be the last moment at which it can.
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(mWidget->viewport(), &leave);
}

bool TableDragging::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // a press soon after a click
        press(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseMove:
        return move(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease:
        return release(*static_cast<QMouseEvent*>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
        dragOver(*static_cast<QDragMoveEvent*>(event));
        return true;
    case QEvent::DragLeave:
        hideGap();
        return true;
    case QEvent::Drop:
        drop(*static_cast<QDropEvent*>(event));
        return true;
    case QEvent::Hide:
        cancel();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void TableDragging::press(const QMouseEvent& event)
{
    const bool left = event.button() == Qt::LeftButton;
    mPressedAt = event.position().toPoint();
    mPressedRow = left ? mWidget->rowAt(mPressedAt.y()) : -1;
    mSwallowsRelease = false;
}

bool TableDragging::move(const QMouseEvent& event)
{
    if (mPressedRow < 0 || !(event.buttons() & Qt::LeftButton))
        return false;
    const QPoint way = event.position().toPoint() - mPressedAt;
    if (way.manhattanLength() >= QApplication::startDragDistance())
        begin();
    return true;
}

// A row that was dragged was not clicked: its box stays as it is.
bool TableDragging::release(const QMouseEvent& event)
{
    mPressedRow = -1;
    return event.button() == Qt::LeftButton && std::exchange(mSwallowsRelease, false);
}

void TableDragging::begin()
{
    const int row = std::exchange(mPressedRow, -1);
    if (mRunning)
        return;
    mDrag = mModel.dragRow(row);
    if (!mDrag)
        return;
    mSwallowsRelease = true;
    const QRect place = pictureOf(row);
    mRunning = RunningDrag::begin(contentOf(*mDrag), mWidget->viewport()->grab(place),
                                  mPressedAt - place.topLeft());
    connect(mRunning, &RunningDrag::ended, this, &TableDragging::end);
}

void TableDragging::end()
{
    mRunning.clear();
    mDrag.reset();
    hideGap();
}

// The rows themselves stay here. Other programs learn no more than what kind of thing is dragged.
QMimeData* TableDragging::contentOf(const RowDrag& drag) const
{
    auto* content = new QMimeData;
    for (const auto& type : drag.pasteboard->types())
        content->setData(QString::fromStdString(type), {});
    return content;
}

QRect TableDragging::placeOf(int row) const
{
    return {0, mWidget->rowViewportPosition(row), mWidget->viewport()->width(),
            mWidget->rowHeight(row)};
}

// No wider than what is written in the row: beside it the line that marks the gap must be seen.
QRect TableDragging::pictureOf(int row) const
{
    const QRect place = placeOf(row);
    const int last = mModel.columnCount({}) - 1;
    const int written = mWidget->sizeHintForIndex(mModel.index(row, last)).width();
    const int spare = std::max(0, mWidget->columnWidth(last) - written);
    return mWidget->isRightToLeft() ? place.adjusted(spare, 0, 0, 0)
                                    : place.adjusted(0, 0, -spare, 0);
}

bool TableDragging::isOurs(const QDropEvent& event) const
{
    const auto& types = mTable->draggedTypes();
    return mDrag && mRunning && event.source() == mRunning &&
           std::any_of(types.begin(), types.end(), [&](const auto& type) {
               return event.mimeData()->hasFormat(QString::fromStdString(type));
           });
}

void TableDragging::dragOver(QDragMoveEvent& event)
{
    if (!isOurs(event)) {
        event.ignore();
        return;
    }
    const int y = event.position().toPoint().y();
    showGap(y);
    scrollNear(y);
    event.setDropAction(Qt::MoveAction);
    // Whoever lets a drag in hears of its end, so it is let in wherever it comes.
    event.setAccepted(event.type() == QEvent::DragEnter || mLine->isVisible());
}

void TableDragging::drop(QDropEvent& event)
{
    const int gap = gapAt(event.position().toPoint().y());
    hideGap();
    event.setDropAction(Qt::MoveAction);
    const auto drag = isOurs(event) ? std::exchange(mDrag, std::nullopt) : std::nullopt;
    event.setAccepted(drag && mModel.drop(*drag, gap));
    if (!event.isAccepted())
        return;
    // The keyboard goes along.
    const int row = gap > drag->row ? gap - 1 : gap;
    mWidget->setCurrentIndex(mModel.index(row, mWidget->currentIndex().column()));
}

int TableDragging::gapAt(int y) const
{
    const int row = mWidget->rowAt(y);
    if (row < 0)
        return y < 0 ? 0 : mModel.rowCount({});
    const bool upperHalf = y < mWidget->rowViewportPosition(row) + mWidget->rowHeight(row) / 2;
    return upperHalf ? row : row + 1;
}

void TableDragging::showGap(int y)
{
    const int gap = gapAt(y);
    mLine->setVisible(mDrag && mModel.mayDrop(*mDrag, gap));
    const int rows = mModel.rowCount({});
    const QRect place = placeOf(std::min(gap, rows - 1));
    const int top = gap < rows ? place.top() : place.bottom() + 1;
    mLine->setGeometry(0, std::max(0, top - lineHeight / 2), place.width(), lineHeight);
}

void TableDragging::hideGap()
{
    mLine->hide();
    mScrolling.stop();
}

// The nearer rows are scrolled into sight while the pointer stays at the edge.
void TableDragging::scrollNear(int y)
{
    const int margin = mWidget->autoScrollMargin();
    const int height = mWidget->viewport()->height();
    mLastY = y;
    mScrollStep = y < margin ? -1 : y >= height - margin ? 1 : 0;
    if (mScrollStep == 0)
        mScrolling.stop();
    else if (!mScrolling.isActive())
        mScrolling.start(static_cast<int>(scrollPause.count()), this);
}

void TableDragging::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mScrolling.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    auto* bar = mWidget->verticalScrollBar();
    bar->setValue(bar->value() + mScrollStep);
    showGap(mLastY);
}

} // namespace farview
