// The panel with nothing but a keyboard: every key goes to the window, which hands it on.

#include "Applications/Preferences/HostWindow.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/Rules/DeviceScreen.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLineEdit>
#include <QTabBar>
#include <QTableView>
#include <QtTest/QTest>

#include <algorithm>

namespace farview::test
{
namespace
{

class KeyboardOnly : public PanelFixture
{
protected:
    /// The panel, with the keyboard on its tabs.
    void open(bool on = false)
    {
        load();
        if (on)
            fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        // Whether it is reached in reading order is judged by places: nothing may scroll away.
        view->resize(HostWindow::firstSize(*view));
        announce("Desk", "desk.local.");
        announce("Sofa", "sofa.local.");
        activate();
        tabs()->setFocus();
    }
    void activate()
    {
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
    }
    QTabWidget* tabs() const { return find<QTabWidget>("tabView"); }
    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    SwitchWidget* onOff() const { return find<SwitchWidget>("onOffSwitch"); }
    QTableView* table() const { return find<QTableView>("autoConnectTable"); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        // Here no window manager hands the keyboard back when another window goes.
        if (!QGuiApplication::focusWindow())
            activate();
        ASSERT_NE(QGuiApplication::focusWindow(), nullptr);
        QTest::keyClick(QGuiApplication::focusWindow(), key, modifiers);
        settle();
    }
    /// Whose turn it is. The tabs hand the keyboard to their bar.
    QWidget* focused() const
    {
        QWidget* widget = QApplication::focusWidget();
        return qobject_cast<QTabBar*>(widget) ? tabs() : widget;
    }
    /// Presses the key until the keyboard is where it began, or until it has gone too far.
    QList<QWidget*> round(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QList<QWidget*> met;
        do {
            met += focused();
            press(key, modifiers);
        } while (focused() && focused() != met.front() && met.size() < 50);
        return met;
    }
    void goTo(QWidget* widget)
    {
        for (int steps = 0; focused() != widget && steps < 50; ++steps)
            press(Qt::Key_Tab);
        ASSERT_EQ(focused(), widget) << widget->objectName().toStdString();
    }
    void connectToDeskWithKey()
    {
        serverPosts(kServerConnectedToDevice, {{kDeviceNameKey, "desk.local."},
                                               {kDeviceAddressKey, "192.168.1.20"},
                                               {kDeviceKeyKey, std::string(64, 'a')}});
    }
    void openPage(int index)
    {
        tabs()->setCurrentIndex(index);
        tabs()->setFocus();
        settle();
    }

    /// What can be operated on the page that is open.
    QList<QWidget*> operable() const
    {
        QList<QWidget*> found = {tabs()};
        for (auto* each : tabs()->currentWidget()->findChildren<QWidget*>()) {
            const bool isControl =
                qobject_cast<QAbstractButton*>(each) || qobject_cast<SwitchWidget*>(each) ||
                qobject_cast<ScreenMapWidget*>(each) || qobject_cast<QTableView*>(each);
            const bool isOwn = !each->objectName().isEmpty();
            if (isControl && isOwn && each->isVisible() && each->isEnabled())
                found += each;
        }
        return found;
    }
    static std::string names(const QList<QWidget*>& widgets)
    {
        QStringList all;
        for (const auto* each : widgets)
            all += each->objectName();
        return all.join(u' ').toStdString();
    }
    QRect place(const QWidget* widget) const
    {
        const QWidget* shown = widget == tabs() ? tabs()->tabBar() : widget;
        return {shown->mapTo(view.get(), QPoint(0, 0)), shown->size()};
    }
    /// Whether the eye comes to the first before the second.
    bool isReadBefore(const QWidget* first, const QWidget* second) const
    {
        const QRect one = place(first);
        const QRect other = place(second);
        const bool sameLine = one.top() <= other.bottom() && other.top() <= one.bottom();
        if (!sameLine)
            return one.top() < other.top();
        return view->isRightToLeft() ? one.right() > other.right() : one.left() < other.left();
    }
    void expectTabToReachEverything()
    {
        const auto there = round(Qt::Key_Tab);
        auto all = operable();
        for (const auto* each : all)
            EXPECT_TRUE(there.contains(each)) << each->objectName().toStdString();
        EXPECT_EQ(there.size(), all.size()) << names(there) << "\n" << names(all);
        for (qsizetype i = 1; i < there.size(); ++i)
            EXPECT_TRUE(isReadBefore(there[i - 1], there[i])) << names({there[i - 1], there[i]});
        auto back = round(Qt::Key_Tab, Qt::ShiftModifier);
        std::reverse(back.begin() + 1, back.end());
        EXPECT_EQ(names(back), names(there));
    }
};

class KeyboardInEachDirection : public KeyboardOnly, public testing::WithParamInterface<bool>
{
};

INSTANTIATE_TEST_SUITE_P(FromTheRight, KeyboardInEachDirection, testing::Bool());

TEST_P(KeyboardInEachDirection, TheTabKeyReachesEverythingInReadingOrderAndGoesBack)
{
    open(true);
    if (GetParam())
        view->setLayoutDirection(Qt::RightToLeft);
    for (const int page : {0, 1}) {
        openPage(page);
        EXPECT_GE(operable().size(), page == 0 ? 5 : 10);
        expectTabToReachEverything();
    }
}

TEST_P(KeyboardInEachDirection, TheTabKeyReachesThePictureOfTheScreensAndTheDiagnosisInTheCard)
{
    open(true);
    if (GetParam())
        view->setLayoutDirection(Qt::RightToLeft);
    openPage(0);
    serverConnectedTo("desk.local.");
    serverReports(shownScreen());
    view->resize(view->width(), 800);
    settle();
    EXPECT_TRUE(operable().contains(find<QWidget>("screenMap")));
    expectTabToReachEverything();
    serverReports({.state = ScreenReport::State::missing, .obstacle = ScreenObstacle::failed});
    EXPECT_TRUE(operable().contains(find<QWidget>("screenDiagnoseButton")));
    expectTabToReachEverything();
}

TEST_P(KeyboardInEachDirection, TheTabKeyReachesTheFurtherDevicesAndWhoMayType)
{
    open(true);
    if (GetParam())
        view->setLayoutDirection(Qt::RightToLeft);
    openPage(0);
    connectToDeskWithKey();
    serverReports(shownScreen());
    view->resize(view->width(), 900);
    settle();
    EXPECT_TRUE(operable().contains(find<QWidget>("furtherDevicesTable")));
    EXPECT_TRUE(operable().contains(find<QWidget>("mayTypeCheckbox")));
    expectTabToReachEverything();
}

TEST_F(KeyboardOnly, AFurtherDeviceIsUsedAndOneMayTypeWithoutAMouse)
{
    open(true);
    openPage(0);
    connectToDeskWithKey();
    goTo(find<QWidget>("furtherDevicesTable"));
    press(Qt::Key_Space);
    const auto asked = fake.distributedNotificationCenter.postsNamed(kAlsoConnectToHost);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].userInfo.at(kConnectToHostNameKey), "sofa.local.");
    goTo(find<QWidget>("mayTypeCheckbox"));
    press(Qt::Key_Space);
    EXPECT_EQ(fake.distributedNotificationCenter.countOf(kPairedDevicesDidChange), 1);
}

TEST_P(KeyboardInEachDirection, TheTabKeyReachesBothAnswersToTheQuestionForDigits)
{
    open(true);
    if (GetParam())
        view->setLayoutDirection(Qt::RightToLeft);
    compareWith("Desk");
    view->resize(view->width(), 800);
    settle();
    EXPECT_TRUE(operable().contains(find<QWidget>("pairingYesButton")));
    EXPECT_TRUE(operable().contains(find<QWidget>("pairingNoButton")));
    expectTabToReachEverything();
}

TEST_F(KeyboardOnly, EscapeSaysNoToTheDigitsAndNothingButTheYesItselfSaysYes)
{
    const auto& center = fake.distributedNotificationCenter;
    open(true);
    press(Qt::Key_Escape);
    EXPECT_EQ(center.countOf(kRefuseDevice), 0) << "nothing is asked";
    compareWith("Desk");
    press(Qt::Key_Return);
    press(Qt::Key_Enter);
    press(Qt::Key_Space);
    EXPECT_EQ(center.countOf(kConfirmDevice), 0);
    EXPECT_EQ(center.countOf(kRefuseDevice), 0);
    press(Qt::Key_Escape);
    // A shortcut lets the button be seen pressed.
    EXPECT_TRUE(QTest::qWaitFor([&] { return center.countOf(kRefuseDevice) == 1; }));
    goTo(find<QWidget>("pairingYesButton"));
    press(Qt::Key_Space);
    EXPECT_EQ(center.countOf(kConfirmDevice), 1);
}

TEST_F(KeyboardOnly, ArrowsMoveTheDevicesScreenAndCtrlZTakesThatBack)
{
    open(true);
    openPage(0);
    serverConnectedTo("desk.local.");
    serverReports(shownScreen());
    const auto side = [] {
        return rememberedScreen(FVEPreferences::sharedAppPrefs().deviceScreen("desk.local.")).side;
    };
    goTo(find<QWidget>("screenMap"));
    const QImage before = find<QWidget>("screenMap")->grab().toImage();
    press(Qt::Key_Up);
    EXPECT_EQ(side(), ScreenSide::above);
    EXPECT_NE(find<QWidget>("screenMap")->grab().toImage(), before);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(side(), ScreenSide::right);
}

TEST_F(KeyboardOnly, TheTabKeyReachesTheButtonForAMissingDriver)
{
    fake.registry = FakeRegistry();
    open();
    openPage(0);
    EXPECT_TRUE(operable().contains(find<QWidget>("reinstallDriversButton")));
    expectTabToReachEverything();
}

TEST_F(KeyboardOnly, ArrowsAndTheSpaceBarMoveTheSwitch)
{
    open();
    openPage(0);
    pane->onOffSwitch()->slider()->setAnimator(nullptr); // a switch that moves takes no key
    goTo(onOff());
    for (const auto& [key, on] :
         {std::pair{Qt::Key_Right, true}, std::pair{Qt::Key_Left, false},
          std::pair{Qt::Key_Space, true}, std::pair{Qt::Key_Space, false}}) {
        press(key);
        EXPECT_EQ(onOff()->isOn(), on) << key;
        EXPECT_EQ(fake.preferences.copyAppValue("currentState", "com.quillon.Farview"),
                  PropertyList(on ? 1 : 0));
    }
}

TEST_F(KeyboardOnly, TheSpaceBarPressesTheWordsBesideTheSwitch)
{
    open();
    openPage(0);
    pane->onOffSwitch()->slider()->setAnimator(nullptr);
    goTo(find<QWidget>("onTextButton"));
    press(Qt::Key_Space);
    EXPECT_TRUE(onOff()->isOn());
    goTo(find<QWidget>("offTextButton"));
    press(Qt::Key_Space);
    EXPECT_FALSE(onOff()->isOn());
}

TEST_F(KeyboardOnly, ThePopUpOpensAndADeviceIsChosen)
{
    open(true);
    openPage(0);
    for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down, Qt::Key_Up, Qt::Key_F4}) {
        goTo(popUp());
        press(key);
        ASSERT_NE(popUp()->openMenu(), nullptr) << key;
        press(Qt::Key_Escape);
        ASSERT_EQ(popUp()->openMenu(), nullptr) << key;
    }
    press(Qt::Key_Space);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(popUp()->openMenu(), nullptr);
    EXPECT_EQ(fake.distributedNotificationCenter.countOf(kConnectServerToHost), 1);
    EXPECT_EQ(view->focusWidget(), popUp()) << "the keyboard is where it was, not at "
                                            << view->focusWidget()->objectName().toStdString();
}

TEST_F(KeyboardOnly, TheTabsAreChangedWithArrowsAndShortcuts)
{
    open();
    openPage(0);
    press(Qt::Key_Right);
    EXPECT_EQ(tabs()->currentIndex(), 1);
    press(Qt::Key_Left);
    EXPECT_EQ(tabs()->currentIndex(), 0);
    press(Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(tabs()->currentIndex(), 1);
    press(Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(tabs()->currentIndex(), 0);
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs()->currentIndex(), 1);
}

TEST_F(KeyboardOnly, TheSpaceBarTogglesEachBox)
{
    open();
    openPage(1);
    int toggled = 0;
    for (auto* each : operable()) {
        auto* box = qobject_cast<QCheckBox*>(each);
        if (!box)
            continue;
        goTo(box);
        const bool before = box->isChecked();
        press(Qt::Key_Space);
        EXPECT_NE(box->isChecked(), before) << box->objectName().toStdString();
        if (QApplication::activeWindow() != view.get())
            press(Qt::Key_Escape); // the window that asks first
        else
            press(Qt::Key_Space);
        EXPECT_EQ(box->isChecked(), before) << box->objectName().toStdString();
        ++toggled;
    }
    EXPECT_GE(toggled, 7);
}

TEST_F(KeyboardOnly, TheTableIsTickedAndBroughtIntoOrder)
{
    open();
    openPage(1);
    goTo(table());
    const auto box = [this](int row) { return table()->model()->index(row, 0); };
    const auto device = [this](int row) {
        return table()->model()->index(row, 1).data().toString();
    };
    table()->setCurrentIndex({});
    press(Qt::Key_Down);
    ASSERT_TRUE(table()->currentIndex().isValid()) << "an arrow key finds the first row";
    press(Qt::Key_Home, Qt::ControlModifier);
    press(Qt::Key_Space);
    EXPECT_EQ(box(0).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    EXPECT_EQ(box(1).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(device(1), u"Sofa"_qs);
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(device(0), u"Sofa"_qs);
    EXPECT_EQ(table()->currentIndex().row(), 0) << "the keyboard goes along";
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(device(1), u"Sofa"_qs);
    press(Qt::Key_Tab);
    EXPECT_NE(focused(), table());
}

TEST_F(KeyboardOnly, TheSpaceBarPressesTheButtons)
{
    open();
    openPage(1);
    goTo(find<QWidget>("helpButton"));
    press(Qt::Key_Space);
    EXPECT_EQ(fake.workspace.opened().size(), 1u);
    goTo(find<QWidget>("showDevicesButton"));
    press(Qt::Key_Space);
    EXPECT_EQ(tabs()->currentIndex(), 0);
}

TEST_F(KeyboardOnly, TheSheetIsOpenedFilledConfirmedAndCancelled)
{
    open(true);
    openPage(0);
    goTo(popUp());
    press(Qt::Key_Space);
    press(Qt::Key_Up); // from the first entry to the last
    press(Qt::Key_Return);
    auto* sheet = find<SheetWidget>("otherDevicePanel");
    ASSERT_TRUE(sheet->isVisible());
    ASSERT_EQ(QApplication::focusWidget(), find<QLineEdit>("otherTextField"));
    QTest::keyClicks(QApplication::focusWidget(), u"10.0.0.5"_qs);
    QStringList met;
    for (int i = 0; i < 4; ++i) {
        met += QApplication::focusWidget()->objectName();
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(met.join(u' '),
              u"otherTextField connectToOtherOKButton cancelButton otherTextField"_qs);
    press(Qt::Key_Return);
    EXPECT_EQ(fake.distributedNotificationCenter.countOf(kConnectServerToTicket), 1);
    press(Qt::Key_Escape);
    EXPECT_FALSE(sheet->isVisible());
}

TEST_F(KeyboardOnly, WhereTheKeyboardIsCanBeSeen)
{
    open(true);
    for (const int page : {0, 1}) {
        openPage(page);
        for (auto* each : operable()) {
            view->setFocus();
            const QImage before = view->grab(place(each)).toImage();
            goTo(each);
            const QImage after = view->grab(place(each)).toImage();
            EXPECT_NE(before, after) << each->objectName().toStdString();
        }
    }
}

} // namespace
} // namespace farview::test
