#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/ReducedMotionStyle.h"
#include "Tests/Controls/Qt/HandDrivenAnimations.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

namespace farview::test
{
namespace
{

struct FramedViews : testing::Test {
    FramedViews()
    {
        popUpWidget->setGeometry(0, 0, 400, 30);
        reducedWidget->setGeometry(0, 0, 364, 30);
        spinnerWidget->setGeometry(374, 3, 24, 24);
        spinnerWidget->setProperty("trailing", true);
        EXPECT_TRUE(bindToWidget(popUp, popUpWidget));
        EXPECT_TRUE(bindToWidget(reduced, reducedWidget));
        EXPECT_TRUE(bindToWidget(spinner, spinnerWidget));
    }
    void show(int width)
    {
        container.resize(width, 30);
        container.show();
        turn();
    }
    void narrow(bool animated)
    {
        Rect frame = popUp->frame();
        frame.size.width = reduced->frame().size.width;
        popUp->setFrame(frame, animated);
    }

    HandDrivenAnimations animations;
    ReducedMotionStyle noTime{u"Fusion"_qs};
    FrameContainer container{nullptr};
    QWidget* popUpWidget = new QWidget(&container);
    QWidget* reducedWidget = new QWidget(&container);
    QWidget* spinnerWidget = new QWidget(&container);
    std::shared_ptr<View> popUp = std::make_shared<View>();
    std::shared_ptr<View> reduced = std::make_shared<View>();
    std::shared_ptr<View> spinner = std::make_shared<View>();
};

TEST_F(FramedViews, FramesComeFromTheFileAndGrowWithTheContainer)
{
    EXPECT_EQ(popUp->frame(), (Rect{{0, 0}, {400, 30}}));
    show(500);
    EXPECT_EQ(popUp->frame().size.width, 500);
    EXPECT_EQ(reduced->frame().size.width, 464);
    EXPECT_EQ(popUpWidget->geometry(), QRect(0, 0, 500, 30));
    EXPECT_EQ(spinnerWidget->geometry(), QRect(474, 3, 24, 24));
}

TEST_F(FramedViews, ANarrowedPopUpStaysNarrowedWhenTheContainerGrows)
{
    popUpWidget->setStyle(&noTime);
    show(400);
    narrow(true);
    EXPECT_EQ(popUpWidget->width(), 364);
    container.resize(600, 30);
    EXPECT_EQ(popUpWidget->width(), 564);
    EXPECT_EQ(popUp->frame().size.width, reduced->frame().size.width);
}

TEST_F(FramedViews, AnAnimatedChangeIsPlayedAndEndsAtItsDestination)
{
    show(400);
    narrow(true);
    EXPECT_EQ(popUp->frame().size.width, 364) << "the destination holds at once";
    EXPECT_EQ(popUpWidget->width(), 400);
    animations.pass(125);
    EXPECT_EQ(popUpWidget->width(), 382) << "slow, fast, slow: half the way in half the time";
    animations.pass(124);
    EXPECT_GT(popUpWidget->width(), 363);
    animations.pass(1);
    EXPECT_EQ(popUpWidget->width(), 364) << "a quarter of a second in all";
}

TEST_F(FramedViews, WhereNothingMayMoveTheDestinationIsThereAtOnce)
{
    popUpWidget->setStyle(&noTime);
    show(400);
    narrow(true);
    EXPECT_EQ(popUpWidget->width(), 364);
}

TEST_F(FramedViews, AMoveThatIsTurnedRoundBeginsWhereItWas)
{
    show(400);
    narrow(true);
    animations.pass(125);
    Rect frame = popUp->frame();
    frame.size.width = 400;
    popUp->setFrame(frame, true);
    EXPECT_EQ(popUpWidget->width(), 382);
    animations.pass(250);
    EXPECT_EQ(popUpWidget->width(), 400);
}

TEST_F(FramedViews, AContainerThatGrowsDuringTheAnimationLeavesNoStrayFrame)
{
    show(400);
    narrow(true);
    container.resize(500, 30);
    EXPECT_EQ(popUpWidget->geometry(), QRect(0, 0, 464, 30));
    for (int i = 0; i < 10; ++i) {
        animations.pass(50);
        ASSERT_EQ(popUpWidget->width(), 464);
    }
}

TEST_F(FramedViews, ReadFromRightToLeftTheSidesAreSwapped)
{
    popUpWidget->setStyle(&noTime);
    show(400);
    narrow(false);
    container.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(popUpWidget->geometry(), QRect(36, 0, 364, 30));
    EXPECT_EQ(spinnerWidget->geometry(), QRect(2, 3, 24, 24));
    EXPECT_EQ(popUp->frame().origin.x, 0);
}

TEST_F(FramedViews, AFrameSetWhileNothingIsSeenIsNotPlayed)
{
    narrow(true);
    EXPECT_EQ(popUpWidget->width(), 364);
}

} // namespace
} // namespace farview::test
