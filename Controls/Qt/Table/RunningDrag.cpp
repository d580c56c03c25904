#include "Controls/Qt/Table/RunningDrag.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPixmap>

namespace farview
{

RunningDrag* RunningDrag::begin(QMimeData* content, const QPixmap& picture, QPoint hotSpot)
{
    auto* drag = new RunningDrag(content, picture, hotSpot);
    QMetaObject::invokeMethod(
        drag, [drag] { drag->run(); }, Qt::QueuedConnection);
    return drag;
}

// The toolkit holds on to a drag without noticing its end, so its owner must outlive every window.
RunningDrag::RunningDrag(QMimeData* content, const QPixmap& picture, QPoint hotSpot)
    : QObject(QCoreApplication::instance()), mDrag(new QDrag(this))
{
    mDrag->setMimeData(content);
    mDrag->setPixmap(picture);
    mDrag->setHotSpot(hotSpot);
}

void RunningDrag::run()
{
    // Without a button held nothing would ever end it.
    if (!mCancelled && QGuiApplication::mouseButtons() != Qt::NoButton) {
        mRunning = true;
        // The one loop inside the loop: the toolkit drags in no other way. It was entered from the
        // outermost loop, so no function of ours waits below it for objects that may be gone.
        mDrag->exec(Qt::MoveAction);
        mRunning = false;
    }
    emit ended();
    // Takes the toolkit's drag along: what it carries means nothing to other programs.
    deleteLater();
}

void RunningDrag::cancel()
{
    mCancelled = true;
    const auto end = [this] {
        if (mRunning)
            QDrag::cancel();
    };
    QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
}

} // namespace farview
