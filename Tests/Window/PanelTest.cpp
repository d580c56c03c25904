#include "Applications/Preferences/HostWindow.h"
#include "Controls/Qt/Forms/PageScroller.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Tests/Window/EveryLanguage.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QLabel>
#include <QScrollBar>
#include <QTabBar>
#include <QTableView>

#include <set>

namespace farview::test
{
namespace
{

class Panel : public PanelFixture
{
protected:
    QTabWidget* tabs() const { return find<QTabWidget>("tabView"); }
    QWidget* page(int index) const { return tabs()->widget(index); }
    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    void turnOn()
    {
        pane->onOffSwitch()->slider()->setAnimator(nullptr);
        tabs()->setCurrentIndex(0);
        find<QAbstractButton>("onTextButton")->click();
        settle();
    }
    /// The view in the host's window, which gives it back when it goes, however the test ends.
    auto showInHost()
    {
        const auto giveBack = [this](HostWindow* window) {
            view->setParent(nullptr);
            delete window;
        };
        std::unique_ptr<HostWindow, decltype(giveBack)> window(new HostWindow, giveBack);
        pane->willSelect();
        window->setView(view.get(), {}, {});
        window->show();
        pane->didSelect();
        settle();
        return window;
    }
};

TEST_F(Panel, ItsFileHasEveryOutletInItsFirstState)
{
    load();
    EXPECT_TRUE(pane->virtualScreenSelectionPopup()->isEnabled());
    EXPECT_TRUE(pane->warningImage()->isHidden());
    EXPECT_TRUE(pane->waitingForServerIndicator()->isHidden());
    EXPECT_TRUE(pane->reinstallDriversButton()->isHidden());
    EXPECT_EQ(pane->tabView()->identifiers(),
              (std::vector<std::string>{"VirtualScreen", "Settings"}));
    EXPECT_LT(pane->placeholderForReducedPopupSize()->frame().size.width,
              pane->placeholderForFullPopupSize()->frame().size.width);
}

TEST_F(Panel, TheFirstShowingOpensTheSettingsAndOneClickLeadsToTheDevices)
{
    load();
    show();
    EXPECT_EQ(tabs()->currentIndex(), 1);
    find<QAbstractButton>("showDevicesButton")->click();
    EXPECT_EQ(tabs()->currentIndex(), 0);
}

TEST_F(Panel, TheSwitchTurnsOnAndTheHintTellsWhatToDoNext)
{
    load();
    show();
    turnOn();
    EXPECT_TRUE(find<SwitchWidget>("onOffSwitch")->isOn());
    EXPECT_EQ(find<QLabel>("statusLabel")->text(), QStringLiteral("On"));
    EXPECT_TRUE(find<QLabel>("deviceHintLabel")->text().startsWith(u"No device yet?"_qs));
}

TEST_F(Panel, TheSwitchHasItsPicturesInBothSizesAndTheirShadowsAreTransparent)
{
    load();
    const auto read = [this](const std::string& name) {
        const auto path = bundle->pathForResource(name, "tiff");
        return path ? QImage(QString::fromStdString(*path)) : QImage();
    };
    const QSize whole = read("OverlayMask").size();
    EXPECT_EQ(find<SwitchWidget>("onOffSwitch")->sizeHint(),
              whole + QSize(2 * SwitchWidget::margin, 2 * SwitchWidget::margin));
    for (const std::string name : {"OverlayMask", "SliderWell", "SliderKnob", "SliderKnobDown"}) {
        const QImage image = read(name);
        EXPECT_FALSE(image.isNull()) << name;
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << name;
        EXPECT_EQ(read(name + "@2x").size(), image.size() * 2) << name;
    }
    EXPECT_EQ(read("SliderWell").size(), whole - QSize(0, 1));
    EXPECT_EQ(read("SliderKnob").height(), whole.height() + 4);
    EXPECT_GT(read("SliderKnob").width(), whole.width() / 2)
        << "it covers the border of the halves";
    EXPECT_EQ(read("SliderKnobDown").size(), read("SliderKnob").size());
}

TEST_F(Panel, ADeviceCanBeChosenAndTheSpinnerTurnsBesideTheNarrowedPopUp)
{
    load();
    show();
    turnOn();
    announce("<i>Living</i> & Room", "living.local.");
    const int fullWidth = popUp()->width();
    emit popUp()->openRequested();
    ASSERT_NE(popUp()->openMenu(), nullptr);
    EXPECT_EQ(popUp()->openMenu()->actions().at(1)->text(),
              QStringLiteral("<i>Living</i> && Room"));
    popUp()->openMenu()->actions().at(1)->trigger();
    popUp()->openMenu()->close();
    settle();
    EXPECT_TRUE(find<SpinnerWidget>("waitingForServerIndicator")->isTurning());
    const QDeadlineTimer limit(3000);
    const int narrow = static_cast<int>(pane->placeholderForReducedPopupSize()->frame().size.width);
    while (popUp()->width() != narrow && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(popUp()->width(), narrow);
    EXPECT_LT(narrow, fullWidth);
    fake.runLoop.advance(Duration(16.0));
    QCoreApplication::processEvents();
    EXPECT_FALSE(find<QLabel>("warningImage")->isHidden());
    const auto* instructions = find<QLabel>("instructionsLabel");
    EXPECT_TRUE(instructions->text().startsWith(u"There was a problem"_qs));
    EXPECT_EQ(instructions->textInteractionFlags(), Qt::TextSelectableByMouse) << "for a report";
}

TEST_F(Panel, WithoutTheDriverItOffersToReinstallIt)
{
    fake.registry = FakeRegistry();
    load();
    show();
    tabs()->setCurrentIndex(0);
    EXPECT_TRUE(find<QAbstractButton>("reinstallDriversButton")->isVisible());
    EXPECT_FALSE(find<SwitchWidget>("onOffSwitch")->isVisible());
}

TEST_F(Panel, TheTableFoldsAwayWithItsCheckBox)
{
    load();
    show();
    auto* table = find<QTableView>("autoConnectTable");
    EXPECT_TRUE(table->isVisible());
    find<QCheckBox>("autoConnect")->click();
    EXPECT_FALSE(table->isVisible());
    settle();
    EXPECT_LT(find<QWidget>("menuExtraCheckbox")->y(), table->y() + table->height());
}

class PanelInEachLanguage : public Panel, public testing::WithParamInterface<const char*>
{
};

TEST_F(Panel, ItsTextsAreInTheUsersLanguage)
{
    load("de");
    show();
    EXPECT_EQ(tabs()->tabText(1), u"&Einstellungen"_qs);
    EXPECT_TRUE(find<QLabel>("statusExplanationLabel")->text().startsWith(u"Farview ist aus"_qs));
}

INSTANTIATE_TEST_SUITE_P(Languages, PanelInEachLanguage, everyLanguage, nameOfLanguage);

TEST_P(PanelInEachLanguage, InTheRoomThatItsWindowGivesNothingScrolls)
{
    for (const bool isLarge : {false, true}) {
        if (isLarge)
            useLargeFont();
        load(GetParam());
        const auto window = showInHost();
        turnOn();
        for (int index = 0; index < tabs()->count(); ++index) {
            tabs()->setCurrentIndex(index);
            settle();
            for (const auto* area : page(index)->findChildren<PageScroller*>())
                EXPECT_EQ(area->verticalScrollBar()->maximum(), 0)
                    << area->objectName().toStdString() << (isLarge ? " in large type" : "");
        }
    }
}

TEST_P(PanelInEachLanguage, WhatIsSaidOfTheMonitorIsInThatLanguage)
{
    load(GetParam());
    fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
    show();
    announce("Desk", "desk.local.");
    serverConnectedTo("desk.local.");
    auto report = shownScreen();
    report.scale = 2;
    const bool isEnglish = GetParam() == std::string("en");
    for (const auto& corner :
         {pixelPoint(3200, 0), pixelPoint(-1920, 0), pixelPoint(0, -1200), pixelPoint(0, 1080)}) {
        report.monitor = pixelRect(corner.x, corner.y, 1920, 1200);
        serverReports(report);
        const auto text = find<QLabel>("deviceHintLabel")->text();
        for (const char* number : {"1920", "1200", "60", "200"})
            EXPECT_TRUE(text.contains(QString::fromLatin1(number))) << text.toStdString();
        EXPECT_FALSE(text.contains(u'$')) << text.toStdString();
        EXPECT_EQ(text.contains(u"your main display"_qs), isEnglish) << text.toStdString();
        EXPECT_EQ(text.contains(u"enlarged"_qs), isEnglish) << text.toStdString();
    }
}

TEST_P(PanelInEachLanguage, NoShortcutIsGivenTwiceOnOnePage)
{
    load(GetParam());
    for (int index = 0; index < tabs()->count(); ++index) {
        std::multiset<QChar> letters;
        const auto note = [&](const QString& text) {
            const qsizetype mark = text.indexOf(u'&');
            if (mark >= 0)
                letters.insert(text.at(mark + 1).toLower());
        };
        for (int tab = 0; tab < tabs()->count(); ++tab)
            note(tabs()->tabText(tab));
        for (const auto* button : page(index)->findChildren<QAbstractButton*>())
            note(button->text());
        for (const auto* label : page(index)->findChildren<QLabel*>())
            note(label->buddy() ? label->text() : QString());
        EXPECT_GT(letters.size(), 2u);
        for (const QChar letter : letters)
            EXPECT_EQ(letters.count(letter), 1u) << QString(letter).toStdString();
    }
}

} // namespace
} // namespace farview::test
