#include "Controls/Qt/Text/TextColors.h"
#include "Tests/Controls/Qt/TableFixture.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

struct BoundTable : TableFixture<QTableView> {
    /// The menu of a row, opened by the mouse. Null when there is none.
    QMenu* menuOf(int row)
    {
        const QPoint place = widget.visualRect(widget.model()->index(row, 1)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place,
                                widget.viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(widget.viewport(), &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    QVariant cell(int row, int column, int role)
    {
        return widget.model()->index(row, column).data(role);
    }
};

TEST_F(BoundTable, ItAsksItsSourceByTheColumnsIdentifiers)
{
    EXPECT_EQ(widget.model()->rowCount(), 2);
    EXPECT_EQ(widget.model()->columnCount(), 2);
    EXPECT_EQ(cell(0, 0, Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(cell(1, 0, Qt::CheckStateRole).toInt(), Qt::Unchecked);
    EXPECT_EQ(cell(0, 1, Qt::DisplayRole).toString(), QStringLiteral("Tablet"));
    EXPECT_FALSE(cell(0, 1, Qt::CheckStateRole).isValid());
    EXPECT_EQ(widget.model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Device"));
}

TEST_F(BoundTable, HostileNamesAreShownAsText)
{
    EXPECT_EQ(cell(1, 1, Qt::DisplayRole).toString(), QString::fromUtf8("<b>Phone</b>␉"));
    EXPECT_TRUE(cell(1, 1, Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;")));
}

TEST_F(BoundTable, ARowWithARemarkStandsBackForEyeAndEar)
{
    rows->remarkable = 1;
    EXPECT_EQ(cell(1, 1, Qt::AccessibleDescriptionRole).toString(),
              QStringLiteral("Not here, <b>seen</b> before"));
    EXPECT_TRUE(cell(1, 1, Qt::ToolTipRole)
                    .toString()
                    .endsWith(QStringLiteral("\nNot here, &lt;b&gt;seen&lt;/b&gt; before</qt>")));
    EXPECT_TRUE(cell(1, 1, Qt::FontRole).value<QFont>().italic());
    EXPECT_EQ(cell(1, 1, Qt::ForegroundRole).value<QColor>(),
              secondaryText(QGuiApplication::palette()));
    for (const int role : {Qt::AccessibleDescriptionRole, Qt::FontRole, Qt::ForegroundRole})
        EXPECT_FALSE(cell(0, 1, role).isValid()) << "no remark on this one";
}

TEST_F(BoundTable, WhatDoesNotComeFromItsOwnDragIsRefused)
{
    table->registerForDraggedTypes({"row"});
    for (const char* type : {"row", "text/plain", "application/x-qabstractitemmodeldatalist"}) {
        QMimeData content;
        content.setData(QString::fromLatin1(type), QByteArray(10'000'000, 'x'));
        const QPoint place = widget.viewport()->rect().center();
        QDragEnterEvent enter(place, Qt::MoveAction | Qt::CopyAction, &content, Qt::LeftButton, {});
        enter.accept();
        QCoreApplication::sendEvent(widget.viewport(), &enter);
        EXPECT_FALSE(enter.isAccepted()) << type;
        QDropEvent drop(place, Qt::MoveAction | Qt::CopyAction, &content, Qt::LeftButton, {});
        QCoreApplication::sendEvent(widget.viewport(), &drop);
    }
    EXPECT_TRUE(rows->drops.empty());
}

TEST_F(BoundTable, MeasuringALongListLooksAtFewOfItsRows)
{
    rows->names.assign(10'000, "Device");
    rows->flags.assign(10'000, false);
    rows->asked = 0;
    widget.resize(300, 300);
    widget.show();
    table->reloadData();
    turn();
    EXPECT_GT(rows->asked, 0);
    EXPECT_LT(rows->asked, 2'000);
}

TEST_F(BoundTable, ATickReachesTheSourceAndTextCannotBeEdited)
{
    EXPECT_TRUE(
        widget.model()->setData(widget.model()->index(1, 0), Qt::Checked, Qt::CheckStateRole));
    ASSERT_EQ(rows->edits.size(), 1u);
    EXPECT_EQ(rows->edits[0], std::make_tuple(std::string("AutoConnectFlag"), 1, true));
    EXPECT_FALSE(widget.model()->setData(widget.model()->index(1, 1), "x", Qt::EditRole));
    EXPECT_FALSE(widget.model()->flags(widget.model()->index(1, 1)) & Qt::ItemIsEditable);
}

TEST_F(BoundTable, ReloadsInsideAnEditAreOneResetOnTheNextTurn)
{
    QSignalSpy resets(widget.model(), &QAbstractItemModel::modelReset);
    rows->during = [&](TableView& edited) {
        rows->names.push_back("Third");
        rows->flags.push_back(false);
        edited.reloadData();
        edited.reloadData();
    };
    widget.model()->setData(widget.model()->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(widget.model()->rowCount(), 2);
    turn();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(widget.model()->rowCount(), 3);
}

TEST_F(BoundTable, NothingIsEditedBetweenAnEditAndItsReload)
{
    rows->during = [&](TableView& edited) { edited.reloadData(); };
    widget.model()->setData(widget.model()->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_FALSE(
        widget.model()->setData(widget.model()->index(1, 0), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(rows->edits.size(), 1u);
}

TEST_F(BoundTable, RowsThatWentAwayBeforeTheReloadAreEmpty)
{
    rows->names.clear();
    rows->flags.clear();
    EXPECT_FALSE(cell(1, 1, Qt::DisplayRole).isValid());
    EXPECT_FALSE(cell(0, 0, Qt::CheckStateRole).isValid());
}

TEST_F(BoundTable, TheKeyboardStaysWhereItWas)
{
    widget.setCurrentIndex(widget.model()->index(1, 0));
    table->reloadData();
    EXPECT_EQ(widget.currentIndex(), widget.model()->index(1, 0));
    rows->names.pop_back();
    rows->flags.pop_back();
    table->reloadData();
    EXPECT_EQ(widget.currentIndex(), widget.model()->index(0, 0));
}

TEST_F(BoundTable, AltAndAnArrowMoveTheRowThatHasTheKeyboardAndItGoesAlong)
{
    rows->flags = {true, true};
    QSignalSpy resets(widget.model(), &QAbstractItemModel::modelReset);
    widget.setCurrentIndex(widget.model()->index(0, 1));
    QTest::keyClick(&widget, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(rows->drops, std::vector<int>{2});
    EXPECT_EQ(resets.count(), 0) << "inside the drop the reload is only marked";
    QTest::keyClick(&widget, Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(rows->drops.size(), 1u) << "the table still shows an older state";
    turn();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(widget.currentIndex().row(), 1);
    QTest::keyClick(&widget, Qt::Key_Up, Qt::AltModifier);
    turn();
    EXPECT_EQ(rows->drops, (std::vector<int>{2, 0}));
    EXPECT_EQ(widget.currentIndex().row(), 0);
}

TEST_F(BoundTable, ARowThatMayNotBeMovedStaysAndSoDoesTheKeyboard)
{
    widget.setCurrentIndex(widget.model()->index(1, 1));
    QTest::keyClick(&widget, Qt::Key_Up, Qt::AltModifier);
    EXPECT_TRUE(rows->drops.empty());
    EXPECT_EQ(widget.currentIndex().row(), 1);
    widget.setCurrentIndex(widget.model()->index(0, 1));
    QTest::keyClick(&widget, Qt::Key_Up, Qt::AltModifier);
    EXPECT_TRUE(rows->drops.empty());
    widget.setCurrentIndex({});
    QTest::keyClick(&widget, Qt::Key_Down, Qt::AltModifier);
    EXPECT_TRUE(rows->drops.empty());
}

TEST_F(BoundTable, ItFoldsAwayWithItsScrollView)
{
    EXPECT_FALSE(widget.sizePolicy().retainSizeWhenHidden());
    table->enclosingScrollView().setHidden(true);
    EXPECT_TRUE(widget.isHidden());
    table->setHidden(true);
    table->enclosingScrollView().setHidden(false);
    EXPECT_TRUE(widget.isHidden());
    table->setHidden(false);
    EXPECT_FALSE(widget.isHidden());
}

TEST_F(BoundTable, ASourceThatIsGoneLeavesAnEmptyTable)
{
    rows.reset();
    table->reloadData();
    EXPECT_EQ(widget.model()->rowCount(), 0);
}

TEST_F(BoundTable, DeleteTakesTheRowOffThatHasTheKeyboardAndUndoBringsItBack)
{
    widget.setCurrentIndex(widget.model()->index(0, 1));
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_EQ(rows->deleted, std::vector<std::string>{"Tablet"});
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_EQ(rows->deleted.size(), 1u) << "the table still shows an older state";
    turn();
    EXPECT_EQ(widget.currentIndex().row(), 0) << "the keyboard has the next row";
    QTest::keyClick(&widget, Qt::Key_Z, Qt::ControlModifier);
    turn();
    EXPECT_TRUE(rows->deleted.empty());
    EXPECT_EQ(widget.model()->rowCount(), 2);
}

TEST_F(BoundTable, ARowThatMustStayIsNotTakenOff)
{
    rows->immovable = 0;
    widget.setCurrentIndex(widget.model()->index(0, 1));
    QTest::keyClick(&widget, Qt::Key_Delete);
    widget.setCurrentIndex({});
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_TRUE(rows->deleted.empty());
}

TEST_F(BoundTable, ItsMenuOffersWhatCanBeDoneToTheRow)
{
    rows->immovable = 0;
    widget.show();
    auto* menu = menuOf(0);
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions().at(0)->text(), u"Forget"_qs);
    EXPECT_FALSE(menu->actions().at(0)->isEnabled());
    EXPECT_FALSE(menu->actions().at(1)->isEnabled()) << "there is nothing to undo";
    menu->close();
    turn();
    menu = menuOf(1);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(widget.currentIndex().row(), 1);
    menu->actions().at(0)->trigger();
    menu->close();
    turn();
    EXPECT_EQ(rows->deleted.size(), 1u);
    menu = menuOf(0);
    ASSERT_NE(menu, nullptr);
    menu->actions().at(1)->trigger();
    menu->close();
    turn();
    EXPECT_EQ(widget.model()->rowCount(), 2);
}

TEST_F(BoundTable, ItsMenuClosesWhenTheRowsBecomeOthers)
{
    widget.show();
    const QPointer<QMenu> menu = menuOf(1);
    ASSERT_NE(menu, nullptr);
    table->reloadData();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(menu, nullptr);
}

} // namespace
} // namespace farview::test
