#include "Controls/Menu.h"
#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QWheelEvent>

namespace farview::test
{
namespace
{

struct BoundPopUp : testing::Test {
    BoundPopUp()
    {
        installAccessibleWidgets();
        EXPECT_TRUE(bindToWidget(button, &widget));
        widget.resize(200, 30);
        widget.show();
    }

    std::shared_ptr<MenuItem> item(std::string title, Represented represented)
    {
        auto made = std::make_shared<MenuItem>();
        made->title = std::move(title);
        made->action = {"press:"};
        made->target = target;
        made->representedObject = std::move(represented);
        return made;
    }
    void setMenu(std::vector<std::shared_ptr<MenuItem>> items)
    {
        auto menu = std::make_shared<Menu>();
        for (const auto& each : items)
            menu->insertItem(each, menu->numberOfItems());
        button->setMenu(menu);
    }
    void press(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
    QAction* entry(int index) { return widget.openMenu()->actions().at(index); }

    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    PopUpWidget widget{nullptr};
    std::shared_ptr<PopUpButton> button = std::make_shared<PopUpButton>();
};

TEST_F(BoundPopUp, ItShowsTheTitleOfTheSelectedEntryOrTheOneThatWasSet)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    EXPECT_EQ(widget.title(), QStringLiteral("None"));
    button->selectItemAtIndex(1);
    EXPECT_EQ(widget.title(), QStringLiteral("Tablet"));
    button->setTitle("Farview: Off");
    EXPECT_EQ(widget.title(), QStringLiteral("Farview: Off"));
}

TEST_F(BoundPopUp, AMousePressOpensTheMenuWithoutWaitingForAnAnswer)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
    ASSERT_NE(widget.openMenu(), nullptr);
    EXPECT_EQ(widget.openMenu()->actions().size(), 2);
}

TEST_F(BoundPopUp, ChoosingAnEntrySelectsItAndSendsItsActionWithTheEntryAsSender)
{
    const auto tablet = item("Tablet", "b");
    setMenu({item("None", {}), tablet});
    press(Qt::Key_Space);
    entry(1)->trigger();
    EXPECT_EQ(target->calls["press:"], 1);
    EXPECT_EQ(target->sender, tablet.get());
    EXPECT_EQ(button->indexOfSelectedItem(), 1);
    EXPECT_EQ(widget.title(), QStringLiteral("Tablet"));
}

TEST_F(BoundPopUp, ArrowKeysAndTheWheelOnlyOpenIt)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    for (const int key : {Qt::Key_Down, Qt::Key_Up}) {
        press(key);
        ASSERT_NE(widget.openMenu(), nullptr);
        widget.openMenu()->close();
    }
    QWheelEvent wheel(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &wheel);
    EXPECT_NE(widget.openMenu(), nullptr);
    EXPECT_EQ(button->indexOfSelectedItem(), 0);
    EXPECT_TRUE(target->calls.empty());
}

TEST_F(BoundPopUp, ADisabledPopUpDoesNotOpen)
{
    setMenu({item("None", {})});
    button->setEnabled(false);
    press(Qt::Key_Down);
    QAccessible::queryAccessibleInterface(&widget)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_EQ(widget.openMenu(), nullptr);
}

TEST_F(BoundPopUp, AnEntryWithoutATargetThatAnswersCannotBeChosen)
{
    const auto busy = item("Busy", "b");
    busy->target.reset();
    const auto unknown = item("Unknown", "c");
    unknown->action = {"nobodyKnows:"};
    const auto other = item("Connect To Other...", {});
    other->enabled = false;
    setMenu({busy, unknown, other});
    press(Qt::Key_Down);
    EXPECT_FALSE(entry(0)->isEnabled());
    EXPECT_FALSE(entry(1)->isEnabled());
    EXPECT_TRUE(entry(2)->isEnabled());
}

TEST_F(BoundPopUp, TheOpenMenuStaysWhileTheMenuIsReplaced)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    press(Qt::Key_Down);
    QMenu* shown = widget.openMenu();
    setMenu({item("None", {}), item("Tablet", "b"), item("Phone", "c")});
    EXPECT_EQ(widget.openMenu(), shown);
    EXPECT_EQ(shown->actions().size(), 2);
    shown->close();
    turn();
    press(Qt::Key_Down);
    EXPECT_EQ(widget.openMenu()->actions().size(), 3);
}

TEST_F(BoundPopUp, AnEntryOfAReplacedMenuStandsForItsSuccessor)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    press(Qt::Key_Down);
    const auto successor = item("Tablet", "b");
    setMenu({item("None", {}), successor});
    entry(1)->trigger();
    EXPECT_EQ(target->sender, successor.get());
    EXPECT_EQ(button->selectedItem(), successor);
}

TEST_F(BoundPopUp, AnEntryThatBecameBusyWhileTheMenuWasOpenIsNotChosen)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    press(Qt::Key_Down);
    const auto busy = item("Tablet", "b");
    busy->target.reset();
    setMenu({item("None", {}), busy});
    entry(1)->trigger();
    EXPECT_TRUE(target->calls.empty());
    EXPECT_EQ(button->indexOfSelectedItem(), 0);
}

TEST_F(BoundPopUp, HostileNamesAreShownAsText)
{
    setMenu({item("R&D\t<b>x</b>\n", {})});
    press(Qt::Key_Down);
    EXPECT_EQ(entry(0)->text(), QString::fromUtf8("R&&D␉<b>x</b>␊"));
    EXPECT_EQ(widget.title(), QString::fromUtf8("R&D␉<b>x</b>␊"));
}

TEST_F(BoundPopUp, OneEntryIsMarkedTheOneThatSaysSoElseTheSelectedOne)
{
    const auto background = item("Tablet (in background)", {});
    setMenu({item("None", {}), background});
    press(Qt::Key_Down);
    EXPECT_TRUE(entry(0)->isChecked());
    EXPECT_FALSE(entry(1)->isChecked());
    widget.openMenu()->close();
    turn();
    background->state = 1;
    press(Qt::Key_Down);
    EXPECT_FALSE(entry(0)->isChecked());
    EXPECT_TRUE(entry(1)->isChecked());
}

TEST_F(BoundPopUp, ClosingTheWindowWithTheMenuOpenIsSafe)
{
    auto* other = new PopUpWidget(nullptr);
    const auto model = std::make_shared<PopUpButton>();
    ASSERT_TRUE(bindToWidget(model, other));
    other->show();
    emit other->openRequested();
    delete other;
    turn();
    model->setTitle("still safe");
}

TEST_F(BoundPopUp, AssistiveTechnologyReadsTheChoiceAndTheLabelAndCanOpenIt)
{
    setMenu({item("None", {}), item("Tablet", "b")});
    widget.setAccessibleName(QStringLiteral("Virtual screen"));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ButtonMenu);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("None"));
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("Virtual screen"));
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_NE(widget.openMenu(), nullptr);
    EXPECT_TRUE(accessible->state().expanded);
    ASSERT_EQ(accessible->childCount(), 1);
    ASSERT_NE(accessible->child(0), nullptr);
    EXPECT_EQ(accessible->child(0)->childCount(), 2);
    EXPECT_EQ(accessible->child(0)->child(1)->text(QAccessible::Name), QStringLiteral("Tablet"));
    EXPECT_EQ(accessible->indexOfChild(accessible->child(0)), 0);
    widget.openMenu()->close();
    EXPECT_EQ(accessible->childCount(), 0);
}

} // namespace
} // namespace farview::test
