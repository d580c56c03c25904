#include "Common/FVEDistributedNotifications.h"
#include "Controls/Qt/PopUpWidget.h"
#include "Controls/Qt/SwitchWidget.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Tests/Support/WaitUntil.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QTabWidget>

namespace farview::test
{
namespace
{

/// The panel on a real display, with a real mouse and a real keyboard.
class RealInput : public PanelFixture
{
protected:
    void open(bool on)
    {
        load();
        if (on)
            fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        find<QTabWidget>("tabView")->setCurrentIndex(0);
        announceAll();
        view->activateWindow();
        ASSERT_TRUE(waitUntil([&] { return view->isActiveWindow(); }));
        runLoopFor(std::chrono::milliseconds(50));
    }
    void announceAll()
    {
        announce("<b>Kitchen</b> & Co", "kitchen.local.");
        announce("Living Room", "living.local.");
    }
    static void xdotool(const QStringList& words)
    {
        QProcess process;
        process.start(u"xdotool"_qs, words);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0);
    }
    static void click(const QPoint& place, int button = 1)
    {
        xdotool({u"mousemove"_qs, QString::number(place.x()), QString::number(place.y()),
                 u"click"_qs, QString::number(button)});
    }
    static void click(QWidget* widget) { click(widget->mapToGlobal(widget->rect().center())); }
    void clickEntry(int index)
    {
        QMenu* menu = popUp()->openMenu();
        const QRect place = menu->actionGeometry(menu->actions().at(index));
        click(menu->mapToGlobal(place.center()));
    }
    static void key(const char* name) { xdotool({u"key"_qs, QString::fromLatin1(name)}); }

    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    bool isOpen() const { return popUp()->openMenu() && popUp()->openMenu()->isVisible(); }
    int connectRequests() const
    {
        return fake.distributedNotificationCenter.countOf(kConnectServerToHost);
    }
};

TEST_F(RealInput, TheMouseOpensTheMenuAndPicksADevice)
{
    open(true);
    click(popUp());
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    EXPECT_EQ(popUp()->openMenu()->actions().at(1)->text(), u"<b>Kitchen</b> && Co"_qs);
    clickEntry(2);
    EXPECT_TRUE(waitUntil([&] { return connectRequests() == 1; }));
    EXPECT_FALSE(isOpen());
}

TEST_F(RealInput, TheKeyboardOpensTheMenuAndPicksADevice)
{
    open(true);
    popUp()->setFocus();
    key("Down");
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    EXPECT_EQ(connectRequests(), 0);
    key("Down");
    key("Return");
    EXPECT_TRUE(waitUntil([&] { return connectRequests() == 1; }));
}

TEST_F(RealInput, EscapeClosesTheMenuAndChoosesNothing)
{
    open(true);
    popUp()->setFocus();
    key("space");
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    key("Escape");
    EXPECT_TRUE(waitUntil([&] { return !isOpen(); }));
    EXPECT_EQ(connectRequests(), 0);
}

TEST_F(RealInput, AClickOnTheOpenPopUpClosesIt)
{
    open(true);
    click(popUp());
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    click(popUp());
    ASSERT_TRUE(waitUntil([&] { return !isOpen(); }));
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_FALSE(isOpen());
}

TEST_F(RealInput, TheWheelOpensTheMenuAndChangesNothing)
{
    open(true);
    const QString title = popUp()->title();
    click(popUp()->mapToGlobal(popUp()->rect().center()), 5);
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    EXPECT_EQ(popUp()->title(), title);
    EXPECT_EQ(connectRequests(), 0);
}

TEST_F(RealInput, AMenuThatIsOpenWhileDevicesComeAndGoStaysAndChoosesWhatItShows)
{
    open(true);
    click(popUp());
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    QMenu* menu = popUp()->openMenu();
    announce("Another", "another.local.");
    fake.discovery.remove({"<b>Kitchen</b> & Co"});
    settle();
    ASSERT_EQ(popUp()->openMenu(), menu);
    EXPECT_EQ(menu->actions().size(), 4);
    clickEntry(2);
    ASSERT_TRUE(waitUntil([&] { return connectRequests() == 1; }));
    const auto posts = fake.distributedNotificationCenter.postsNamed(kConnectServerToHost);
    EXPECT_EQ(posts.front().userInfo.at("connectToHostName"), "living.local.");
}

TEST_F(RealInput, TheWholeRoadCanBeGoneWithTheKeyboard)
{
    open(false);
    find<QTabWidget>("tabView")->setFocus();
    key("Tab");
    key("Tab");
    EXPECT_TRUE(waitUntil([&] { return find<SwitchWidget>("onOffSwitch")->hasFocus(); }));
    key("space");
    EXPECT_TRUE(waitUntil([&] { return find<QLabel>("statusLabel")->text() == u"On"_qs; }));
    key("alt+d");
    EXPECT_TRUE(waitUntil([&] { return popUp()->hasFocus(); }));
    key("alt+s");
    EXPECT_TRUE(waitUntil([&] { return find<QTabWidget>("tabView")->currentIndex() == 1; }));
}

TEST_F(RealInput, TheMouseMovesTheSwitch)
{
    open(false);
    click(find<SwitchWidget>("onOffSwitch"));
    EXPECT_TRUE(waitUntil([&] { return find<QLabel>("statusLabel")->text() == u"On"_qs; }));
    click(find<QAbstractButton>("offTextButton"));
    EXPECT_TRUE(waitUntil([&] { return find<QLabel>("statusLabel")->text() == u"Off"_qs; }));
}

TEST_F(RealInput, AnAddressIsTypedIntoTheSheetAndSentWithReturn)
{
    open(true);
    click(popUp());
    ASSERT_TRUE(waitUntil([&] { return isOpen(); }));
    clickEntry(3);
    const auto& sheet = pane->connectToOtherSheetController();
    ASSERT_TRUE(waitUntil([&] { return sheet->isOpen() && !isOpen(); }));
    auto* field = find<QLineEdit>("otherTextField");
    ASSERT_TRUE(waitUntil([&] { return field->hasFocus() && field->isActiveWindow(); }));
    xdotool({u"type"_qs, u"10.0.0."_qs});
    ASSERT_TRUE(waitUntil([&] { return field->text() == u"10.0.0."_qs; }));
    key("Return");
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_EQ(fake.distributedNotificationCenter.countOf(kConnectServerToTicket), 0);
    xdotool({u"type"_qs, u"5"_qs});
    ASSERT_TRUE(
        waitUntil([&] { return find<QAbstractButton>("connectToOtherOKButton")->isEnabled(); }));
    key("Return");
    EXPECT_TRUE(waitUntil(
        [&] { return fake.distributedNotificationCenter.countOf(kConnectServerToTicket) == 1; }));
    click(find<SwitchWidget>("onOffSwitch"));
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(find<SwitchWidget>("onOffSwitch")->isOn()) << "the window behind takes no input";
    key("Escape");
    EXPECT_TRUE(waitUntil([&] { return !sheet->isOpen() && !field->isVisible(); }));
    click(find<SwitchWidget>("onOffSwitch"));
    EXPECT_TRUE(waitUntil([&] { return !find<SwitchWidget>("onOffSwitch")->isOn(); }));
}

} // namespace
} // namespace farview::test
