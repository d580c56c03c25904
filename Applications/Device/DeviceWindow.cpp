#include "Applications/Device/DeviceWindow.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

constexpr int windowWidth = 420;
/// Room for some known computers.
constexpr int listHeight = 400;
/// How near to the upper edge the bar is asked for, in points: a finger's width.
constexpr int edge = 24;
constexpr std::chrono::seconds restAfter{3};
/// A picture in a window leaves as much of the screen free.
constexpr double partOfScreen = 0.75;

} // namespace

DeviceWindow::DeviceWindow(const DeviceTexts& texts, Actions actions, First first)
    : mTexts(texts), mActions(std::move(actions)), mFirst(first), mPages(new QStackedLayout(this)),
      mStatusPage(new StatusPage(texts, [this] { listComputers(true); })),
      mQuestion(new PairingPage(texts, {mActions.confirm, mActions.refuse})),
      mComputers(
          new KnownComputersPage(texts, {mActions.forget, [this] { listComputers(false); }})),
      mView(new ScreenView)
{
    for (QWidget* each : std::initializer_list<QWidget*>{mStatusPage, mQuestion, mComputers, mView})
        mPages->addWidget(each);
    setPage(*mStatusPage);
    mView->setAccessibleName(texts.text("Picture of the other computer"));
    mBar = new PictureBar(texts,
                          {[this](bool isFitted) { mView->setFitted(isFitted); },
                           [this](bool isFull) { fillScreen(isFull); }, mActions.disconnect},
                          mView);
    mRest.setSingleShot(true);
    mRest.setInterval(restAfter);
    connect(&mRest, &QTimer::timeout, this, &DeviceWindow::rest);
    // A screen that turns tells several changes at once.
    mScreenChanged.setSingleShot(true);
    connect(&mScreenChanged, &QTimer::timeout, this, [this] { mTellScreen(); });
    setMouseTracking(true);
    setWindowTitle(texts.text("Farview Device"));
    resize(smallSize());
}

void DeviceWindow::showStatus(const DeviceStatus& status)
{
    mStatusPage->showStatus(status);
    mBar->setDeviceName(status.announcedName);
    mComputers->showComputers(status.computers);
    mStatus = status;
    showRightPage();
    keepTextsWhole();
}

void DeviceWindow::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    mActions.closed();
}

// --- pages -----------------------------------------------------------------------------------

QWidget* DeviceWindow::rightPage() const
{
    if (mView->hasPicture())
        return mView;
    if (mStatus.toConfirm)
        return mQuestion;
    return mListsComputers ? static_cast<QWidget*>(mComputers) : mStatusPage;
}

void DeviceWindow::showRightPage()
{
    QWidget* const page = rightPage();
    const QWidget* const before = mPages->currentWidget();
    const bool isNewQuestion = page == mQuestion && mQuestion->ask(*mStatus.toConfirm);
    if (page == before && !isNewQuestion)
        return;
    setPage(*page);
    if (page == mQuestion)
        comeForward();
    else if (page != mView && (before == mView || before == mQuestion))
        becomeWindow(smallSize());
    else if (page == mComputers && !isMaximized())
        resize(size().expandedTo(smallSize()));
}

/// Only the page that is seen says how small the window may be.
void DeviceWindow::setPage(QWidget& page)
{
    for (int index = 0; index < mPages->count(); ++index)
        mPages->widget(index)->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    page.setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    mPages->setCurrentWidget(&page);
    keepTextsWhole();
}

/// No layout asks its window for the height that wrapped texts need.
void DeviceWindow::keepTextsWhole()
{
    const QLayout* const texts = mPages->currentWidget()->layout();
    const int needed = texts ? texts->totalMinimumHeightForWidth(width()) : 0;
    setMinimumHeight(std::clamp(needed, 0, QWidget::screen()->availableSize().height()));
}

void DeviceWindow::listComputers(bool isListed)
{
    mListsComputers = isListed;
    showRightPage();
}

/// Wherever it was, it is seen now, and from a distance.
void DeviceWindow::comeForward()
{
    const QRect room = QWidget::screen()->availableGeometry();
    QRect place({}, room.size() * partOfScreen);
    place.moveCenter(room.center());
    setWindowState(windowState() & Qt::WindowMaximized);
    if (!isMaximized())
        setGeometry(place);
    raise();
    activateWindow();
}

// --- the screen ------------------------------------------------------------------------------

LinkDeviceScreen DeviceWindow::screen() const
{
    const QScreen& mine = *QWidget::screen();
    const QSize room = mFirst == First::fillsScreen ? mine.size() : mine.size() / 2;
    return screenToTell(room, mine.devicePixelRatio(), mine.refreshRate());
}

void DeviceWindow::setScreenObserver(std::function<void()> changed)
{
    mTellScreen = std::move(changed);
}

void DeviceWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    connect(windowHandle(), &QWindow::screenChanged, this, &DeviceWindow::followScreen,
            Qt::UniqueConnection);
    followScreen();
}

void DeviceWindow::followScreen()
{
    for (const auto& each : std::exchange(mScreenSignals, {}))
        disconnect(each);
    const QScreen* mine = QWidget::screen();
    const auto tell = [this] { mScreenChanged.start(0); };
    mScreenSignals = {connect(mine, &QScreen::geometryChanged, this, tell),
                      connect(mine, &QScreen::logicalDotsPerInchChanged, this, tell),
                      connect(mine, &QScreen::refreshRateChanged, this, tell)};
    tell();
}

// --- the picture -----------------------------------------------------------------------------

void DeviceWindow::beginPicture(const PictureReceiver& picture)
{
    const bool isFirst = !mView->hasPicture();
    mView->beginPicture(picture);
    mBar->setPictureSize(mView->pictureSize());
    if (!isFirst)
        return;
    showRightPage();
    fillScreen(mFirst == First::fillsScreen);
    raise();
    mRest.start();
    mActions.pictureShown(true);
}

void DeviceWindow::showFrame(const std::vector<PixelRect>& changed, std::size_t bytes,
                             std::function<void()> drawn)
{
    mBar->countFrame(bytes);
    mView->showFrame(changed, std::move(drawn));
}

void DeviceWindow::endPicture()
{
    if (!mView->hasPicture())
        return;
    mView->endPicture();
    mRest.stop();
    rest();
    mView->unsetCursor();
    showRightPage();
    mActions.pictureShown(false);
}

void DeviceWindow::fillScreen(bool isFull)
{
    if (!isFull)
        return becomeWindow(sizeInWindow());
    if (!isFullScreen())
        mPlace = geometry().topLeft();
    // Where there is no window manager, nobody else makes it that large.
    setGeometry(QWidget::screen()->geometry());
    setWindowState(Qt::WindowFullScreen);
}

void DeviceWindow::becomeWindow(const QSize& size)
{
    const QPoint place = isFullScreen() ? mPlace : geometry().topLeft();
    setWindowState(windowState() & Qt::WindowMinimized);
    setGeometry({place, size});
}

/// Of the picture, pixel for pixel if there is room.
QSize DeviceWindow::sizeInWindow() const
{
    const QSize room = QWidget::screen()->availableSize() * partOfScreen;
    const QSize points = (QSizeF(mView->pictureSize()) / devicePixelRatioF()).toSize();
    return points.boundedTo(points.scaled(room, Qt::KeepAspectRatio));
}

QSize DeviceWindow::smallSize() const
{
    const QWidget* const page = mPages->currentWidget();
    return {windowWidth, page == mComputers ? listHeight : page->sizeHint().height()};
}

// --- bar, keys and mouse ---------------------------------------------------------------------

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
    mBar->setGeometry(0, 0, width(), mBar->sizeHint().height());
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
        mBar->hide();
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
    if (!mBar->geometry().contains(event->position().toPoint()))
        mBar->hide();
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

void DeviceWindow::rest()
{
    const bool isInUse = mBar->underMouse() || mBar->isAncestorOf(focusWidget());
    if (mBar->isVisible() && isInUse && mView->hasPicture())
        return mRest.start();
    mBar->hide();
    mView->setCursor(Qt::BlankCursor);
}

} // namespace farview
