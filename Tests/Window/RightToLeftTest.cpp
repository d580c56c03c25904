// The panel in a language that is written from right to left.

#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Tests/Support/PseudoLanguages.h"
#include "Tests/Support/WaitUntil.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyle>
#include <QTabBar>
#include <QTableView>
#include <QTextLayout>

namespace farview::test
{
namespace
{

class RightToLeft : public PanelFixture
{
protected:
    void open()
    {
        load("ar-XB", mPseudo.bundlePath());
        fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        view->resize(640, 470);
        show();
        announce("Desk", "desk.local.");
        openPage(0);
    }
    void openPage(int index)
    {
        find<QTabWidget>("tabView")->setCurrentIndex(index);
        settle();
    }
    PopUpWidget* popUp() const { return find<PopUpWidget>("virtualScreenSelectionPopup"); }
    static QRect placeIn(const QWidget& window, const QWidget& widget)
    {
        return {widget.mapTo(&window, QPoint(0, 0)), widget.size()};
    }
    static int middle(const QWidget& window, const QWidget& widget)
    {
        return placeIn(window, widget).center().x();
    }

    /// What is seen by itself.
    static QList<QWidget*> partsOf(const QWidget& window)
    {
        QList<QWidget*> found;
        for (auto* each : window.findChildren<QWidget*>()) {
            const bool isOwn =
                !each->objectName().isEmpty() && !each->objectName().startsWith(u"qt_");
            if (isOwn && each->isVisible() && each->findChildren<QLayout*>().isEmpty() &&
                !qobject_cast<QScrollBar*>(each) && each->window() == &window)
                found += each;
        }
        return found;
    }
    /// The same texts in the same window, once in each direction: one is the mirror image.
    void expectMirrored(QWidget& window)
    {
        const auto parts = partsOf(window);
        EXPECT_GE(parts.size(), 4);
        QList<QRect> mirrored;
        for (const auto* each : parts)
            mirrored += placeIn(window, *each);
        window.setLayoutDirection(Qt::LeftToRight);
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
        for (qsizetype i = 0; i < parts.size(); ++i) {
            const QRect plain = placeIn(window, *parts[i]);
            EXPECT_EQ(QStyle::visualRect(Qt::RightToLeft, window.rect(), plain), mirrored[i])
                << parts[i]->objectName().toStdString();
        }
        window.setLayoutDirection(Qt::RightToLeft);
        settle();
    }

private:
    PseudoLanguages mPseudo{FARVIEW_PANE_BUNDLE};
};

TEST_F(RightToLeft, EveryPageIsTheMirrorImage)
{
    open();
    EXPECT_TRUE(view->isRightToLeft());
    expectMirrored(*view);
    openPage(1);
    expectMirrored(*view);
}

TEST_F(RightToLeft, ScreensStandInThePictureAsTheyDoOnTheDesk)
{
    open();
    serverConnectedTo("desk.local.");
    serverReports(shownScreen());
    auto* map = find<ScreenMapWidget>("screenMap");
    ASSERT_TRUE(map->isVisible());
    const auto middle = map->drawn(shownScreen().screens.front()).center().x();
    EXPECT_GT(map->drawnMonitor().center().x(), middle);
    EXPECT_NE(find<QLabel>("deviceHintLabel")->text().indexOf(u"1920"_qs), -1);
}

// On the device they stand as the digits of a number do, in any language.
TEST_F(RightToLeft, TheDigitsToCompareStandAsOnTheDevice)
{
    open();
    compareWith("Desk");
    for (const char* name : {"pairingDigitsLabel", "pairingLabel"}) {
        const QString text = find<QLabel>(name)->text();
        QTextOption direction;
        direction.setTextDirection(Qt::RightToLeft);
        QTextLayout layout(text);
        layout.setTextOption(direction);
        layout.beginLayout();
        const QTextLine line = layout.createLine();
        layout.endLayout();
        const int first = static_cast<int>(text.indexOf(u"482"));
        ASSERT_GE(first, 0) << name;
        EXPECT_LT(line.cursorToX(first + 1), line.cursorToX(first + 5)) << name;
    }
}

TEST_F(RightToLeft, TheDigitsToCompareBeginWhereTheQuestionDoes)
{
    open();
    compareWith("Desk");
    const QRect digits = placeIn(*view, *find<QLabel>("pairingDigitsLabel"));
    const QRect question = placeIn(*view, *find<QLabel>("pairingLabel"));
    EXPECT_EQ(digits.right(), question.right());
    EXPECT_LT(digits.width(), question.width()) << "no room is left beside them in their own label";
}

TEST_F(RightToLeft, TheTextsAreTheLanguagesOwn)
{
    open();
    const QString status = find<QLabel>("statusExplanationLabel")->text();
    EXPECT_TRUE(status.isRightToLeft()) << status.toStdString();
    EXPECT_EQ(find<QLabel>("statusExplanationLabel")->layoutDirection(), Qt::RightToLeft);
    EXPECT_GT(placeIn(*view, *find<QLabel>("statusLabel")).center().x(), view->width() / 2);
}

TEST_F(RightToLeft, OnIsTheLeftEndOfTheSwitchWhereTheWordIs)
{
    open();
    const int off = middle(*view, *find<QWidget>("offTextButton"));
    const int on = middle(*view, *find<QWidget>("onTextButton"));
    auto* onOff = find<SwitchWidget>("onOffSwitch");
    EXPECT_LT(on, middle(*view, *onOff));
    EXPECT_LT(middle(*view, *onOff), off);
    EXPECT_TRUE(onOff->isRightToLeft());
}

TEST_F(RightToLeft, ThePopUpNarrowsFromTheLeftWhereTheSpinnerIs)
{
    open();
    emit popUp()->openRequested();
    ASSERT_NE(popUp()->openMenu(), nullptr);
    EXPECT_TRUE(popUp()->openMenu()->isRightToLeft());
    const QRect full = placeIn(*view, *popUp());
    popUp()->openMenu()->actions().at(1)->trigger();
    popUp()->openMenu()->close();
    settle();
    ASSERT_TRUE(waitUntil([&] { return placeIn(*view, *popUp()).left() > full.left(); }));
    const int narrow = static_cast<int>(pane->placeholderForReducedPopupSize()->frame().size.width);
    ASSERT_TRUE(waitUntil([&] { return popUp()->width() == narrow; }));
    const QRect spinner = placeIn(*view, *find<SpinnerWidget>("waitingForServerIndicator"));
    EXPECT_EQ(placeIn(*view, *popUp()).right(), full.right());
    EXPECT_LT(spinner.right(), placeIn(*view, *popUp()).left());
    EXPECT_GE(spinner.left(), placeIn(*view, *popUp()->parentWidget()).left());
}

TEST_F(RightToLeft, TheTableBeginsAtTheRight)
{
    open();
    openPage(1);
    const auto* table = find<QTableView>("autoConnectTable");
    const auto place = [&](int column) {
        return table->visualRect(table->model()->index(0, column)).center().x();
    };
    EXPECT_GT(place(0), place(1));
    EXPECT_TRUE(table->horizontalHeader()->isRightToLeft());
}

TEST_F(RightToLeft, TheSheetIsTheMirrorImageToo)
{
    open();
    emit popUp()->openRequested();
    const auto entries = popUp()->openMenu()->actions();
    popUp()->openMenu()->close();
    entries.last()->trigger();
    settle();
    auto* sheet = find<SheetWidget>("otherDevicePanel");
    ASSERT_TRUE(sheet->isVisible());
    EXPECT_TRUE(sheet->isRightToLeft());
    EXPECT_LT(middle(*sheet, *find<QLineEdit>("otherTextField")),
              middle(*sheet, *find<QLabel>("addressLabel")));
    expectMirrored(*sheet);
}

TEST(PseudoLanguage, KeepsPlacesShortcutsAndBlanksAndIsLonger)
{
    EXPECT_EQ(PseudoLanguages::accented(" %@ is &on %1"), " %@ íš &oñ %1 ɱóŕé");
    EXPECT_TRUE(QString::fromStdString(PseudoLanguages::fromRightToLeft("Off")).isRightToLeft());
    const std::string english = "Farview is currently on.";
    EXPECT_GT(QString::fromStdString(PseudoLanguages::accented(english)).size(),
              QString::fromStdString(english).size() * 4 / 3);
    EXPECT_EQ(PseudoLanguages::accented(""), "");
}

} // namespace
} // namespace farview::test
