// A real touch screen of Qt's, without a window.
#include "Applications/Device/EdgeSwipe.h"

#include <QTest>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace farview
{
namespace
{

using testing::ElementsAre;
using Verdict = EdgeSwipe::Verdict;

/// A window whose touches are judged.
class Touched final : public QWidget
{
public:
    Touched()
    {
        setAttribute(Qt::WA_AcceptTouchEvents);
        setGeometry(0, 0, 400, 300);
        show();
    }
    EdgeSwipe swipe;
    std::vector<Verdict> verdicts;

protected:
    bool event(QEvent* event) override
    {
        auto* touch = dynamic_cast<QTouchEvent*>(event);
        if (!touch)
            return QWidget::event(event);
        verdicts.push_back(swipe.take(*touch));
        touch->accept();
        return true;
    }
};

class EdgeSwipeTest : public testing::Test
{
protected:
    /// The verdicts about one finger that goes from place to place and lifts at the last.
    std::vector<Verdict> go(const std::vector<QPoint>& places)
    {
        QTest::touchEvent(&touched, screen).press(0, places.front(), &touched);
        for (std::size_t index = 1; index < places.size(); ++index)
            QTest::touchEvent(&touched, screen).move(0, places[index], &touched);
        QTest::touchEvent(&touched, screen).release(0, places.back(), &touched);
        return std::exchange(touched.verdicts, {});
    }

    QPointingDevice* screen = QTest::createTouchDevice();
    Touched touched;
};

TEST_F(EdgeSwipeTest, GoesDownFromTheEdgeAndIsKeptToItsEnd)
{
    EXPECT_THAT(go({{100, 2}, {101, 20}, {104, 40}, {90, 10}}),
                ElementsAre(Verdict::keepBack, Verdict::keepBack, Verdict::isSwipe,
                            Verdict::keepBack, Verdict::keepBack));
    EXPECT_EQ(touched.swipe.takeBegin(), nullptr);
    EXPECT_THAT(go({{100, 100}}), ElementsAre(Verdict::passOn, Verdict::passOn)) << "the next";
}

TEST_F(EdgeSwipeTest, DoesNotBeginBelowTheEdge)
{
    EXPECT_THAT(go({{100, 20}, {100, 90}}),
                ElementsAre(Verdict::passOn, Verdict::passOn, Verdict::passOn));
    EXPECT_EQ(touched.swipe.takeBegin(), nullptr);
}

TEST_F(EdgeSwipeTest, ATapAtTheEdgeIsPassedOnWhenItEnds)
{
    EXPECT_THAT(go({{100, 2}}), ElementsAre(Verdict::keepBack, Verdict::passOn));
    const auto begin = touched.swipe.takeBegin();
    ASSERT_NE(begin, nullptr);
    EXPECT_EQ(begin->type(), QEvent::TouchBegin);
    EXPECT_EQ(touched.swipe.takeBegin(), nullptr) << "once";
}

TEST_F(EdgeSwipeTest, AFingerThatGoesAlongTheEdgeIsPassedOnWhereItBegan)
{
    EXPECT_THAT(go({{100, 2}, {140, 6}}),
                ElementsAre(Verdict::keepBack, Verdict::passOn, Verdict::passOn));
    const auto begin = touched.swipe.takeBegin();
    ASSERT_NE(begin, nullptr);
    const auto& point = static_cast<QTouchEvent&>(*begin).points().front();
    EXPECT_EQ(point.position(), QPointF(100, 2));
    EXPECT_EQ(point.state(), QEventPoint::Pressed);
}

TEST_F(EdgeSwipeTest, ASecondFingerMakesItNone)
{
    QTest::touchEvent(&touched, screen).press(0, {100, 2}, &touched);
    QTest::touchEvent(&touched, screen).stationary(0).press(1, {200, 200}, &touched);
    EXPECT_THAT(touched.verdicts, ElementsAre(Verdict::keepBack, Verdict::passOn));
    QTest::touchEvent(&touched, screen).release(0, {100, 2}).release(1, {200, 200}, &touched);
}

} // namespace
} // namespace farview
