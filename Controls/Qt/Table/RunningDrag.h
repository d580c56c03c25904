#pragma once

#include <QDrag>
#include <QObject>
#include <QPointer>

namespace farview
{

/// A drag in the desktop's hands. It belongs to no window: what was dragged, and where from, may go
/// away in the middle of it. Ends itself. Main thread only.
class RunningDrag : public QObject
{
    Q_OBJECT

public:
    /// Begins on the next turn of the loop.
    static RunningDrag* begin(QMimeData* content, const QPixmap& picture, QPoint hotSpot);

    /// Ends it without a drop, on the next turn of the loop.
    void cancel();

signals:
    /// Dropped or cancelled.
    void ended();

private:
    RunningDrag(QMimeData* content, const QPixmap& picture, QPoint hotSpot);
    void run();

    QPointer<QDrag> mDrag; // the toolkit deletes it when it likes
    bool mRunning = false;
    bool mCancelled = false;
};

} // namespace farview
