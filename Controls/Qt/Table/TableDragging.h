#pragma once

#include "Controls/Qt/Table/TableModel.h"

#include <QBasicTimer>
#include <QPointer>
#include <QTableView>

namespace farview
{

class RunningDrag;

/// Lets the mouse carry rows of a table to other places in it. What comes from anywhere else is
/// refused, whatever it says it is. A row can only be dropped into the table it was taken from, and
/// only while that shows the same rows. Owned by the table; main thread only.
class TableDragging : public QObject
{
    Q_OBJECT

public:
    TableDragging(std::shared_ptr<TableView> table, TableModel& model, QTableView* widget);
    ~TableDragging() override;

    /// Ends a drag that goes on, without a drop.
    void cancel();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void press(const QMouseEvent& event);
    bool move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    void begin();
    void end();
    QMimeData* contentOf(const RowDrag& drag) const;
    QRect placeOf(int row) const;
    QRect pictureOf(int row) const;

    bool isOurs(const QDropEvent& event) const;
    void dragOver(QDragMoveEvent& event);
    void drop(QDropEvent& event);
    int gapAt(int y) const;
    void showGap(int y);
    void hideGap();
    void scrollNear(int y);

    std::shared_ptr<TableView> mTable;
    TableModel& mModel;
    QTableView* mWidget;
    QWidget* mLine; ///< marks the gap that the row would land in
    QBasicTimer mScrolling;
    int mScrollStep = 0;
    int mLastY = 0;
    int mPressedRow = -1;
    QPoint mPressedAt;
    bool mSwallowsRelease = false;
    std::optional<RowDrag> mDrag;
    QPointer<RunningDrag> mRunning;
};

} // namespace farview
