#include "Common/FVEDistributedNotifications.h"
#include "Common/FVEPreferences.h"
#include "Common/Rules/DeviceScreen.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Source/FVEConnectToOtherSheetController.h"
#include "Tests/Window/RealPanel.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QLineEdit>

namespace farview::test
{
namespace
{

class RealInput : public RealPanel
{
protected:
    void open(bool on)
    {
        RealPanel::open(on, 0);
        announceAll();
        bringToFront();
    }
    void announceAll()
    {
        announce("<b>Kitchen</b> & Co", "kitchen.local.");
        announce("Living Room", "living.local.");
    }
    void clickEntry(int index)
    {
        QMenu* menu = popUp()->openMenu();
        const QRect place = menu->actionGeometry(menu->actions().at(index));
        click(menu->mapToGlobal(place.center()));
    }

    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    bool isOpen() const { return popUp()->openMenu() && popUp()->openMenu()->isVisible(); }
    int connectRequests() const
    {
        return fake.distributedNotificationCenter.countOf(kConnectServerToHost);
    }
};

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

TEST_F(RealInput, TheMouseDragsTheKnobOfTheSwitch)
{
    open(false);
    auto* onOff = find<SwitchWidget>("onOffSwitch");
    const auto knob = onOff->mapToGlobal(onOff->rect().center() - QPoint(20, 0));
    const auto drag = [&](const char* by) {
        xdotool({u"mousemove"_qs, QString::number(knob.x()), QString::number(knob.y()),
                 u"mousedown"_qs, u"1"_qs, u"mousemove_relative"_qs, u"--"_qs, u"2"_qs, u"0"_qs,
                 u"mousemove_relative"_qs, u"--"_qs, QString::fromLatin1(by), u"0"_qs,
                 u"mouseup"_qs, u"1"_qs});
    };
    drag("2");
    runLoopFor(std::chrono::milliseconds(300)); // until it has snapped back
    EXPECT_FALSE(onOff->isOn());
    drag("20");
    EXPECT_TRUE(waitUntil([&] { return onOff->isOn() && onOff->position() == 1.0; }));
}

TEST_F(RealInput, TheDevicesScreenIsDraggedToAnotherSideAndBack)
{
    open(true);
    serverConnectedTo("living.local.");
    auto report = shownScreen();
    serverReports(report);
    auto* map = find<ScreenMapWidget>("screenMap");
    ASSERT_TRUE(map->isVisible());
    const auto onScreen = [&](const QRectF& place) {
        const QPoint middle = map->mapToGlobal(place.center().toPoint());
        return QStringList{u"mousemove"_qs, QString::number(middle.x()),
                           QString::number(middle.y())};
    };
    const auto dragTo = [&](const PixelRect& place) {
        xdotool(onScreen(map->drawnMonitor()) + QStringList{u"mousedown"_qs, u"1"_qs} +
                onScreen(map->drawn(place)) + QStringList{u"mouseup"_qs, u"1"_qs});
    };
    const auto remembers = [](ScreenSide side) {
        return waitUntil([side] {
            auto& preferences = FVEPreferences::sharedAppPrefs();
            return rememberedScreen(preferences.deviceScreen("living.local.")).side == side;
        });
    };
    const PixelRect before = report.monitor;
    dragTo(pixelRect(-1920, 0, 1920, 1200));
    EXPECT_TRUE(remembers(ScreenSide::left));
    report.monitor = pixelRect(-1920, 0, 1920, 1200);
    serverReports(report);
    EXPECT_EQ(map->drawnMonitor(), map->drawn(report.monitor));
    dragTo(before);
    EXPECT_TRUE(remembers(ScreenSide::right));
}

TEST_F(RealInput, AssistiveTechnologyIsToldOfEachChangeOfTheSwitchOnce)
{
    open(false);
    static int told;
    told = 0;
    ASSERT_TRUE(QAccessible::isActive());
    const auto before = QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        if (event->type() == QAccessible::StateChanged &&
            static_cast<QAccessibleStateChangeEvent*>(event)->changedStates().checked)
            ++told;
    });
    pane->onOffSwitch()->setState(1);
    EXPECT_EQ(told, 1) << "when the knob sets out";
    EXPECT_TRUE(waitUntil([&] { return !pane->onOffSwitch()->slider()->animating(); }));
    pane->onOffSwitch()->setState(1, false);
    EXPECT_EQ(told, 1);
    pane->onOffSwitch()->setState(0, false);
    EXPECT_EQ(told, 2);
    QAccessible::installUpdateHandler(before);
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
