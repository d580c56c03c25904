#pragma once

#include "Applications/Device/Compositor.h"
#include "Applications/Device/DeviceServer.h"
#include "Applications/Device/EdgeSwipe.h"
#include "Applications/Device/KnownComputersPage.h"
#include "Applications/Device/PairingPage.h"
#include "Applications/Device/PictureBar.h"
#include "Applications/Device/PictureInput.h"
#include "Applications/Device/ScreenView.h"
#include "Applications/Device/StatusPage.h"

#include <QStackedLayout>
#include <QWidget>

#include <functional>

namespace farview
{

/// The device's window. While there is no picture it is small and says what is happening; with the
/// first picture it fills the screen. F11 and a double click change between the screen and a
/// window, Escape leaves the screen, F10 or a touch of the upper edge brings the bar. All other
/// keys are left to others.
///
/// While the computer takes input, what is done with the picture is the computer's, and Escape too
/// when it lets the device type. Then F10 brings the bar, or a swipe from the upper edge, or a
/// pointer that rests at that edge.
///
/// While a computer that is not known yet waits for an answer, and there is no picture, the window
/// comes to the front, large, and asks.
class DeviceWindow final : public QWidget, public Glass
{
public:
    struct Actions {
        std::function<void()> closed;     ///< by the user
        std::function<void()> disconnect; ///< the user wants to be rid of the host
        std::function<void(bool isShown)> pictureShown;
        /// The computer that waits shows these digits, too.
        std::function<void(const std::string& digits)> confirm;
        std::function<void()> refuse; ///< it does not, or is not to use the device
        std::function<void(const std::string& key)> forget; ///< a known computer
    };

    /// What the first picture does to the window.
    enum class First { fillsScreen, staysInWindow };

    /// `texts` outlive it. A picture that stays in the window is smaller than the screen.
    DeviceWindow(const DeviceTexts& texts, Actions actions, First first = First::fillsScreen);

    void showStatus(const DeviceStatus& status);

    LinkDeviceScreen screen() const override;
    void setScreenObserver(std::function<void()> changed) override;
    void setInput(InputReporter* input) override;
    void beginPicture(const PictureReceiver& picture) override;
    void showFrame(const std::vector<PixelRect>& changed, std::size_t bytes,
                   std::function<void()> drawn) override;
    void movePointer() override { mView->movePointer(); }
    void endPicture() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QWidget* rightPage() const;
    void showRightPage();
    void setPage(QWidget& page);
    void keepTextsWhole();
    void listComputers(bool isListed);
    void comeForward();
    void followScreen();
    void tellScreen();
    void fillScreen(bool isFull);
    void becomeWindow(const QSize& size);
    QSize sizeInWindow() const;
    QSize smallSize() const;
    void leavePage(QKeyEvent* event);
    void followPlace(const QEvent& event);
    bool takeForComputer(QEvent& event);
    bool takeTouch(QTouchEvent& touch);
    void followPointer(const QMouseEvent& event);
    void showKeyboard(bool isShown);
    void openBarAt(const QPointF& place);
    void showBar();
    void hideBar();
    void placeBar();
    void rest();

    const DeviceTexts& mTexts;
    Actions mActions;
    First mFirst;
    Compositor mCompositor{[this] { mScreenChanged.start(); }};
    DeviceStatus mStatus;
    bool mListsComputers = false; ///< unless there is a question or a picture
    QStackedLayout* mPages;
    StatusPage* mStatusPage;
    PairingPage* mQuestion;
    KnownComputersPage* mComputers;
    ScreenView* mView;
    PictureBar* mBar;
    WaylandHandle<zwp_idle_inhibitor_v1> mAwake; ///< while there is a picture
    PictureInput mInput;
    EdgeSwipe mSwipe;
    QPoint mPlace;    ///< before it filled the screen
    QTimer mRest;     ///< until bar and mouse pointer go
    QTimer mEdgeRest; ///< until a pointer at the upper edge brings the bar
    QTimer mScreenChanged;
    std::function<void()> mTellScreen = [] {};
    QList<QMetaObject::Connection> mScreenSignals;
};

} // namespace farview
