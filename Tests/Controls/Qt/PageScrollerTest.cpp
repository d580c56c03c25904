#include "Controls/Qt/Forms/PageScroller.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

namespace farview::test
{
namespace
{

struct ScrolledPage : testing::Test {
    ScrolledPage()
    {
        auto* page = new QWidget;
        auto* layout = new QVBoxLayout(page);
        for (int i = 0; i < 20; ++i)
            layout->addWidget(new QPushButton(QString::number(i)));
        scroller.setWidget(page);
    }
    QPushButton* last() const { return scroller.findChildren<QPushButton*>().last(); }
    bool isInSight(const QWidget* widget) const
    {
        const QPoint place = widget->mapTo(scroller.viewport(), QPoint(0, 0));
        return scroller.viewport()->rect().contains(QRect(place, widget->size()));
    }

    PageScroller scroller{nullptr};
};

TEST_F(ScrolledPage, WantsToBeSeenWholeAndCanBeLow)
{
    EXPECT_EQ(scroller.sizeHint().height(), scroller.widget()->sizeHint().height());
    EXPECT_LT(scroller.minimumSizeHint().height(), 150);
    EXPECT_GE(scroller.minimumSizeHint().width(), scroller.widget()->minimumSizeHint().width());
}

TEST_F(ScrolledPage, WhatTakesTheFocusComesIntoSight)
{
    scroller.resize(200, 150);
    scroller.show();
    turn();
    EXPECT_FALSE(isInSight(last()));
    scroller.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&scroller));
    scroller.findChildren<QPushButton*>().first()->setFocus();
    while (QApplication::focusWidget() && QApplication::focusWidget() != last())
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), last());
    EXPECT_TRUE(isInSight(last()));
}

TEST_F(ScrolledPage, NeedsNoBarWhereThereIsRoom)
{
    scroller.resize(scroller.sizeHint());
    scroller.show();
    turn();
    EXPECT_EQ(scroller.verticalScrollBar()->maximum(), 0);
    EXPECT_TRUE(isInSight(last()));
}

TEST_F(ScrolledPage, HasNoGroundOfItsOwnAndNoPlaceForTheFocus)
{
    scroller.show();
    turn();
    EXPECT_FALSE(scroller.viewport()->autoFillBackground());
    EXPECT_FALSE(scroller.widget()->autoFillBackground());
    EXPECT_EQ(scroller.focusPolicy(), Qt::NoFocus);
}

} // namespace
} // namespace farview::test
