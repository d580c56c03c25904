#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/Table/TableWidget.h"
#include "Tests/Controls/Qt/TableFixture.h"

#include <QAccessible>

namespace farview::test
{
namespace
{

/// Before there is a widget, as in the product.
struct WithAccessibleWidgets {
    WithAccessibleWidgets() { installAccessibleWidgets(); }
};

struct TableForAssistiveTechnology : WithAccessibleWidgets, TableFixture<TableWidget> {
    TableForAssistiveTechnology()
    {
        rows->names = {"Tablet", "Phone"};
        rows->immovable = 0;
        widget.resize(300, 200);
        widget.show();
    }
    QAccessibleInterface* accessible() { return QAccessible::queryAccessibleInterface(&widget); }
    QAccessibleInterface* cell(int row, int column)
    {
        return accessible()->tableInterface()->cellAt(row, column);
    }
    static QString name(QAccessibleInterface* object) { return object->text(QAccessible::Name); }
    static QStringList actions(QAccessibleInterface* object)
    {
        return object->actionInterface()->actionNames();
    }
};

TEST_F(TableForAssistiveTechnology, TellsItsCellsAndTheirHeaders)
{
    EXPECT_EQ(accessible()->role(), QAccessible::Table);
    EXPECT_EQ(accessible()->tableInterface()->rowCount(), 2);
    EXPECT_EQ(name(cell(1, 1)), u"Phone"_qs);
    EXPECT_EQ(name(cell(0, 0)), u"Connect"_qs);
    EXPECT_EQ(cell(0, 0)->text(QAccessible::Description), u"ticked"_qs);
    EXPECT_EQ(cell(1, 0)->text(QAccessible::Description), u"not ticked"_qs);
    EXPECT_TRUE(cell(0, 0)->state().checked);
    EXPECT_FALSE(cell(1, 0)->state().checked);
    EXPECT_EQ(name(cell(1, 1)->tableCellInterface()->columnHeaderCells().front()), u"Device"_qs);
    EXPECT_EQ(cell(2, 0), nullptr);
    EXPECT_EQ(cell(0, -1), nullptr);
}

TEST_F(TableForAssistiveTechnology, FindsEachPartByItsNumberAndItsPlace)
{
    for (int index = 0; index < accessible()->childCount(); ++index) {
        QAccessibleInterface* part = accessible()->child(index);
        ASSERT_NE(part, nullptr) << index;
        EXPECT_EQ(accessible()->indexOfChild(part), index);
        EXPECT_EQ(part->parent(), accessible());
    }
    EXPECT_EQ(accessible()->child(accessible()->childCount()), nullptr);
    const QPoint place = cell(1, 1)->rect().center();
    EXPECT_EQ(accessible()->childAt(place.x(), place.y()), cell(1, 1));
}

TEST_F(TableForAssistiveTechnology, LetsABoxBeTicked)
{
    EXPECT_TRUE(actions(cell(1, 0)).contains(QAccessibleActionInterface::toggleAction()));
    EXPECT_FALSE(actions(cell(1, 1)).contains(QAccessibleActionInterface::toggleAction()));
    rows->during = [this](TableView& edited) {
        rows->flags[1] = true;
        edited.reloadData();
    };
    cell(1, 0)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    turn();
    EXPECT_TRUE(rows->flags[1]);
    EXPECT_TRUE(cell(1, 0)->state().checked);
}

TEST_F(TableForAssistiveTechnology, LetsARowBeMovedThatMay)
{
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Up"_qs));
    EXPECT_FALSE(actions(cell(1, 1)).contains(u"Down"_qs));
    cell(1, 1)->actionInterface()->doAction(u"Up"_qs);
    EXPECT_TRUE(rows->drops.empty()) << "it is not ticked";
    cell(0, 1)->actionInterface()->doAction(u"Down"_qs);
    EXPECT_EQ(rows->drops, std::vector<int>{2});
}

TEST_F(TableForAssistiveTechnology, WhatWasThereBeforeAReloadIsNotTakenForWhatIsThereNow)
{
    const QAccessible::Id before = QAccessible::uniqueId(cell(1, 1));
    rows->names = {"Phone"};
    rows->flags = {false};
    table->reloadData();
    turn();
    const QAccessibleInterface* old = QAccessible::accessibleInterface(before);
    EXPECT_TRUE(!old || !old->isValid());
    EXPECT_EQ(name(cell(0, 1)), u"Phone"_qs);
    EXPECT_EQ(cell(1, 1), nullptr);
}

TEST_F(TableForAssistiveTechnology, DisabledItOffersNothing)
{
    table->setEnabled(false);
    EXPECT_TRUE(actions(cell(0, 0)).isEmpty());
    cell(0, 0)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(rows->edits.empty());
}

TEST_F(TableForAssistiveTechnology, LetsARowBeForgottenThatMayAndBroughtBack)
{
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Forget"_qs));
    EXPECT_FALSE(actions(cell(0, 1)).contains(u"Undo Forget"_qs)) << "nothing was forgotten";
    cell(0, 1)->actionInterface()->doAction(u"Forget"_qs);
    EXPECT_TRUE(rows->deleted.empty());
    cell(1, 1)->actionInterface()->doAction(u"Forget"_qs);
    EXPECT_EQ(rows->deleted, std::vector<std::string>{"Phone"});
    turn();
    cell(0, 0)->actionInterface()->doAction(u"Undo Forget"_qs);
    EXPECT_TRUE(rows->deleted.empty());
}

} // namespace
} // namespace farview::test
