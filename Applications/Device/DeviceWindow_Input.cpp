// What the user does with the picture: what is the window's own, and what is the computer's.

#include "Applications/Device/DeviceWindow.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QMouseEvent>

namespace farview
{
namespace
{

/// How near to the upper edge the bar is asked for, in points: a finger's width.
constexpr int edge = 24;

/// With other keys pressed they are the computer's, like every other key.
bool isOfWindow(const QKeyEvent& event)
{
    return event.modifiers() == Qt::NoModifier &&
           (event.key() == Qt::Key_F10 || event.key() == Qt::Key_F11);
}

} // namespace

// --- for the computer ------------------------------------------------------------------------

void DeviceWindow::setInput(InputReporter* input)
{
    mSwipe = {};
    mInput.setReporter(input);
}

bool DeviceWindow::eventFilter(QObject* watched, QEvent* event)
{
    // Only the program is told that.
    if (event->type() == QEvent::TabletLeaveProximity)
        mInput.penLeft();
    if (watched == mView)
        followPlace(*event);
    if (watched == mBar && (event->type() == QEvent::Show || event->type() == QEvent::Hide ||
                            event->type() == QEvent::Resize))
        mView->followScreen();
    const bool isTaken = watched == mView && mInput.isOn() && takeForComputer(*event);
    if (isTaken)
        event->accept();
    return isTaken || QWidget::eventFilter(watched, event);
}

/// Whoever is elsewhere holds nothing here any more.
void DeviceWindow::followPlace(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::FocusOut:
    case QEvent::WindowDeactivate:
    case QEvent::Hide:
        mSwipe = {};
        mInput.leave();
        break;
    case QEvent::Leave:
        mEdgeRest.stop();
        if (!mInput.isPenDown())
            mInput.penLeft();
        break;
    default:
        break;
    }
}

bool DeviceWindow::takeForComputer(QEvent& event)
{
    // The bar hands keys on that it has no use for.
    const auto* key = dynamic_cast<const QKeyEvent*>(&event);
    if (key && (isOfWindow(*key) || focusWidget() != mView))
        return false;
    const auto* pointing = dynamic_cast<QPointerEvent*>(&event);
    if (pointing && pointing->isBeginEvent())
        hideBar();
    if (auto* touch = dynamic_cast<QTouchEvent*>(&event))
        return takeTouch(*touch);
    if (const auto* pointer = dynamic_cast<QMouseEvent*>(&event))
        followPointer(*pointer);
    return mInput.take(event);
}

bool DeviceWindow::takeTouch(QTouchEvent& touch)
{
    const auto verdict = mSwipe.take(touch);
    if (verdict == EdgeSwipe::Verdict::isSwipe)
        showBar();
    if (verdict != EdgeSwipe::Verdict::passOn)
        return true;
    if (const auto begin = mSwipe.takeBegin())
        mInput.take(*begin);
    return mInput.take(touch);
}

/// One pointer is enough, and the computer draws its own. It rests at the very edge when the bar is
/// wanted.
void DeviceWindow::followPointer(const QMouseEvent& event)
{
    mView->setCursor(mView->drawsPointer() ? Qt::BlankCursor : Qt::ArrowCursor);
    const bool isAtEdge = event.position().y() < 1 && event.buttons() == Qt::NoButton;
    if (!isAtEdge)
        mEdgeRest.stop();
    else if (!mEdgeRest.isActive())
        mEdgeRest.start();
}

void DeviceWindow::showKeyboard(bool isShown)
{
    mView->setAttribute(Qt::WA_InputMethodEnabled, isShown);
    if (isShown)
        mView->setFocus();
    QGuiApplication::inputMethod()->setVisible(isShown);
}

// --- for the window --------------------------------------------------------------------------

void DeviceWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        mBar->setFullScreen(isFullScreen());
}

void DeviceWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    keepTextsWhole();
    placeBar();
}

void DeviceWindow::keyPressEvent(QKeyEvent* event)
{
    if (!mView->hasPicture())
        return leavePage(event);
    if (event->key() == Qt::Key_F11)
        fillScreen(!isFullScreen());
    else if (event->key() == Qt::Key_F10)
        mBar->open();
    else if (event->key() == Qt::Key_Escape && mBar->isVisible())
        hideBar();
    else if (event->key() == Qt::Key_Escape && isFullScreen())
        fillScreen(false);
    else
        QWidget::keyPressEvent(event);
}

void DeviceWindow::leavePage(QKeyEvent* event)
{
    const QWidget* const page = mPages->currentWidget();
    if (event->key() == Qt::Key_Escape && page == mQuestion)
        mActions.refuse();
    else if (event->key() == Qt::Key_Escape && page == mComputers)
        listComputers(false);
    else
        QWidget::keyPressEvent(event);
}

void DeviceWindow::mouseMoveEvent(QMouseEvent* event)
{
    mView->unsetCursor();
    openBarAt(event->position());
}

void DeviceWindow::mousePressEvent(QMouseEvent* event)
{
    hideBar();
    openBarAt(event->position());
}

void DeviceWindow::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (mView->hasPicture() && event->button() == Qt::LeftButton)
        fillScreen(!isFullScreen());
}

void DeviceWindow::openBarAt(const QPointF& place)
{
    if (!mView->hasPicture())
        return;
    if (place.y() < edge)
        mBar->show();
    mRest.start();
}

void DeviceWindow::showBar()
{
    mBar->show();
    mRest.start();
}

/// The keyboard goes back to the picture.
void DeviceWindow::hideBar()
{
    mBar->hide();
    if (mView->hasPicture())
        mView->setFocus();
}

void DeviceWindow::placeBar()
{
    const QLayout& layout = *mBar->layout();
    const int height = layout.hasHeightForWidth() ? layout.totalHeightForWidth(width())
                                                  : mBar->sizeHint().height();
    mBar->setGeometry(0, 0, width(), height);
}

void DeviceWindow::rest()
{
    const bool isInUse = mBar->underMouse() || mBar->isAncestorOf(focusWidget());
    if (mBar->isVisible() && isInUse && mView->hasPicture())
        return mRest.start();
    hideBar();
    mView->setCursor(Qt::BlankCursor);
}

} // namespace farview
