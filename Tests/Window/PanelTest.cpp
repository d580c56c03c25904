#include "Applications/Preferences/HostWindow.h"
#include "Controls/Qt/Forms/PageScroller.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Tests/Window/EveryLanguage.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QFile>
#include <QLabel>
#include <QScrollBar>
#include <QTabBar>
#include <QTableView>
#include <QXmlStreamReader>

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
        pane->onOffSwitch()->slider()->setAnimator(nullptr); // pictures are of what stands still
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
    /// Whether everything on that page has the room it needs.
    void expectNothingIsCut(int index)
    {
        tabs()->setCurrentIndex(index);
        QCoreApplication::processEvents();
        for (const auto* label : page(index)->findChildren<QLabel*>()) {
            const int needed = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            EXPECT_GE(label->height(), needed) << label->objectName().toStdString();
            EXPECT_TRUE(label->wordWrap() || label->width() >= label->sizeHint().width())
                << label->objectName().toStdString();
        }
        for (const auto* button : page(index)->findChildren<QAbstractButton*>()) {
            EXPECT_TRUE(button->width() >= button->minimumSizeHint().width() &&
                        button->height() >= button->minimumSizeHint().height())
                << button->objectName().toStdString();
        }
        EXPECT_TRUE(page(index)->rect().contains(page(index)->childrenRect()));
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
    picture("settings");
    find<QAbstractButton>("showDevicesButton")->click();
    EXPECT_EQ(tabs()->currentIndex(), 0);
    picture("off");
}

TEST_F(Panel, TheSwitchTurnsOnAndTheHintTellsWhatToDoNext)
{
    load();
    show();
    turnOn();
    EXPECT_TRUE(find<SwitchWidget>("onOffSwitch")->isOn());
    EXPECT_EQ(find<QLabel>("statusLabel")->text(), QStringLiteral("On"));
    EXPECT_TRUE(find<QLabel>("deviceHintLabel")->text().startsWith(u"No device yet?"_qs));
    picture("on-without-device");
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
    picture("connecting");
    fake.runLoop.advance(Duration(16.0));
    QCoreApplication::processEvents();
    EXPECT_FALSE(find<QLabel>("warningImage")->isHidden());
    const auto* instructions = find<QLabel>("instructionsLabel");
    EXPECT_TRUE(instructions->text().startsWith(u"There was a problem"_qs));
    EXPECT_EQ(instructions->textInteractionFlags(), Qt::TextSelectableByMouse) << "for a report";
    picture("error");
}

TEST_F(Panel, WithoutTheDriverItOffersToReinstallIt)
{
    fake.registry = FakeRegistry();
    load();
    show();
    tabs()->setCurrentIndex(0);
    EXPECT_TRUE(find<QAbstractButton>("reinstallDriversButton")->isVisible());
    EXPECT_FALSE(find<SwitchWidget>("onOffSwitch")->isVisible());
    picture("no-driver");
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
    picture("settings-folded");
}

TEST_F(Panel, ATickInTheTableReachesThePane)
{
    load();
    show();
    announce("Tablet", "tablet.local.");
    auto* model = find<QTableView>("autoConnectTable")->model();
    ASSERT_EQ(model->rowCount(), 1);
    EXPECT_TRUE(model->setData(model->index(0, 0), Qt::Checked, Qt::CheckStateRole));
    settle();
    EXPECT_EQ(pane->countOfCheckedDevices(), 1);
    EXPECT_EQ(model->index(0, 0).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    picture("settings-table");
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

TEST_P(PanelInEachLanguage, ItFitsTheSmallestScreen)
{
    load(GetParam());
    EXPECT_LE(view->minimumSizeHint().height(), 440);
    EXPECT_LE(view->minimumSizeHint().width(), 640);
    view->resize(640, 440);
    show();
    turnOn();
    expectNothingIsCut(0);
    expectNothingIsCut(1);
    picture((std::string("small-") + GetParam()).c_str());
}

TEST_P(PanelInEachLanguage, ItIsReadableWithLargeType)
{
    useLargeFont();
    load(GetParam());
    view->resize(HostWindow::firstSize(*view));
    show();
    turnOn();
    expectNothingIsCut(0);
    picture((std::string("large-main-") + GetParam()).c_str());
    expectNothingIsCut(1);
    picture((std::string("large-settings-") + GetParam()).c_str());
}

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

TEST_P(PanelInEachLanguage, EveryTextOfItsWindowIsInTheCatalogue)
{
    load(GetParam());
    QFile catalogue(QStringLiteral(FARVIEW_PANE_BUNDLE "/Contents/Resources/") +
                    QString::fromLatin1(GetParam()) + u".lproj/Localizable.strings"_qs);
    ASSERT_TRUE(catalogue.open(QIODevice::ReadOnly));
    const QString texts = QString::fromUtf8(catalogue.readAll());
    QFile form(QStringLiteral(FARVIEW_PANE_BUNDLE "/Contents/Resources/PreferencePane.ui"));
    ASSERT_TRUE(form.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&form);
    int checked = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        const bool isText = reader.isStartElement() && reader.name() == u"string" &&
                            reader.attributes().value("notr") != u"true";
        if (!isText)
            continue;
        const QString key = reader.readElementText();
        EXPECT_TRUE(texts.contains(u"\n\""_qs + key + u"\" = \""_qs)) << key.toStdString();
        ++checked;
    }
    EXPECT_GT(checked, 20);
}

TEST_F(Panel, EverythingThatTakesTheFocusHasANameForAssistiveTechnology)
{
    load();
    show();
    int checked = 0;
    for (auto* widget : view->findChildren<QWidget*>()) {
        const bool own = !widget->objectName().startsWith(u"qt_");
        if (!own || widget->focusPolicy() == Qt::NoFocus || qobject_cast<QTabWidget*>(widget))
            continue;
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr) << widget->objectName().toStdString();
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty() &&
                     accessible->text(QAccessible::Description).isEmpty())
            << widget->objectName().toStdString();
        ++checked;
    }
    EXPECT_GE(checked, 12);
}

TEST_F(Panel, TheTabKeyFollowsTheEyes)
{
    load();
    show();
    turnOn();
    QStringList order;
    for (QWidget* next = view->nextInFocusChain(); next != view.get();
         next = next->nextInFocusChain()) {
        if (next->focusPolicy() & Qt::TabFocus && next->isVisible() && next->isEnabled() &&
            !next->objectName().startsWith(u"qt_"))
            order += next->objectName();
    }
    EXPECT_EQ(order.join(u' ').toStdString(),
              "tabView offTextButton onOffSwitch onTextButton virtualScreenSelectionPopup");
}

TEST_F(Panel, InTheDarkAndFromRightToLeftItIsAsCalm)
{
    useDarkColors();
    load();
    show();
    picture("dark-settings");
    turnOn();
    announce("Tablet", "tablet.local.");
    picture("dark-main");
    view->setLayoutDirection(Qt::RightToLeft);
    QCoreApplication::processEvents();
    picture("dark-right-to-left");
    expectNothingIsCut(0);
    const QLabel* status = find<QLabel>("statusLabel");
    EXPECT_GT(status->mapTo(view.get(), QPoint(0, 0)).x(), view->width() / 2);
    // Text and background stay apart in brightness.
    const QPalette colors = status->palette();
    EXPECT_GT(colors.color(QPalette::WindowText).lightness() -
                  colors.color(QPalette::Window).lightness(),
              120);
}

} // namespace
} // namespace farview::test
