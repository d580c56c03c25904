#include "Applications/Device/DeviceWindow.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace farview
{

namespace
{

constexpr int windowWidth = 420;
/// Room for some known computers.
constexpr int listHeight = 400;
constexpr std::chrono::seconds restAfter{3};
constexpr std::chrono::milliseconds edgeRestAfter{500};
/// A screen that turns tells several changes, some of them halfway.
constexpr std::chrono::milliseconds screenRestAfter{40};
/// A picture in a window leaves as much of the screen free.
constexpr double partOfScreen = 0.75;

} // namespace

DeviceWindow::DeviceWindow(const DeviceTexts& texts, Actions actions, First first)
    : mTexts(texts), mActions(std::move(actions)), mFirst(first), mPages(new QStackedLayout(this)),
      mStatusPage(new StatusPage(texts, [this] { listComputers(true); })),
      mQuestion(new PairingPage(texts, {mActions.confirm, mActions.refuse})),
      mComputers(
          new KnownComputersPage(texts, {mActions.forget, [this] { listComputers(false); }})),
      mView(new ScreenView(mCompositor)), mInput(*mView)
{
    for (QWidget* each : std::initializer_list<QWidget*>{mStatusPage, mQuestion, mComputers, mView})
        mPages->addWidget(each);
    setPage(*mStatusPage);
    mView->setAccessibleName(texts.text("Picture of the other computer"));
    mBar = new PictureBar(texts,
                          {[this](bool isFitted) { mView->setFitted(isFitted); },
                           [this](bool isFull) { fillScreen(isFull); },
                           [this](bool isShown) { showKeyboard(isShown); }, mActions.disconnect},
                          mView);
    mRest.setSingleShot(true);
    mRest.setInterval(restAfter);
    connect(&mRest, &QTimer::timeout, this, &DeviceWindow::rest);
    mEdgeRest.setSingleShot(true);
    mEdgeRest.setInterval(edgeRestAfter);
    connect(&mEdgeRest, &QTimer::timeout, this, &DeviceWindow::showBar);
    mScreenChanged.setSingleShot(true);
    mScreenChanged.setInterval(screenRestAfter);
    mScreenChanged.setTimerType(Qt::PreciseTimer);
    connect(&mScreenChanged, &QTimer::timeout, this, &DeviceWindow::tellScreen);
    setMouseTracking(true);
    qApp->installEventFilter(this);
    setWindowTitle(texts.text("Farview Device"));
    resize(smallSize());
}

void DeviceWindow::showStatus(const DeviceStatus& status)
{
    mStatusPage->showStatus(status);
    mBar->setDeviceName(status.announcedName);
    mBar->setOptions(status.options.value_or(LinkOptions{}));
    placeBar();
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
    return screenToTell(room, mCompositor.ratio(mine), mine.refreshRate());
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
    const auto tell = [this] { mScreenChanged.start(); };
    mScreenSignals = {connect(mine, &QScreen::geometryChanged, this, tell),
                      connect(mine, &QScreen::logicalDotsPerInchChanged, this, tell),
                      connect(mine, &QScreen::refreshRateChanged, this, tell)};
    tell();
}

void DeviceWindow::tellScreen()
{
    mView->followScreen();
    mTellScreen();
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
    mView->setFocus();
    raise();
    mRest.start();
    mAwake = mCompositor.newIdleInhibitor(windowHandle());
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
    mEdgeRest.stop();
    mBar->closeKeyboard();
    rest();
    mView->unsetCursor();
    showRightPage();
    mAwake.reset();
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
    const QSize points =
        (QSizeF(mView->pictureSize()) / mCompositor.ratio(*QWidget::screen())).toSize();
    return points.boundedTo(points.scaled(room, Qt::KeepAspectRatio));
}

QSize DeviceWindow::smallSize() const
{
    const QWidget* const page = mPages->currentWidget();
    return {windowWidth, page == mComputers ? listHeight : page->sizeHint().height()};
}

} // namespace farview
