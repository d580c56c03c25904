#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Tests/Controls/Qt/SwitchSupport.h"

#include <QAccessible>
#include <QKeyEvent>

namespace farview::test
{
namespace
{

struct BoundSwitch : testing::Test {
    BoundSwitch()
    {
        installAccessibleWidgets();
        widget.setAccessibleName(QStringLiteral("Farview"));
        widget.setImageSource({&pictures.bundle, pictures.files});
        view->setTarget(target);
        view->setAction({"press:"});
        EXPECT_TRUE(bindToWidget(view, &widget));
        view->slider()->setAnimator(nullptr);
    }
    void press(int key, bool repeated = false)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), repeated);
        QApplication::sendEvent(&widget, &event);
    }

    SwitchPictures pictures;
    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    SwitchWidget widget{nullptr};
    std::shared_ptr<QLNOnOffView> view = std::make_shared<QLNOnOffView>();
};

TEST_F(BoundSwitch, IsAsLargeAsItsPictureAndTheRoomForTheFocusRing)
{
    EXPECT_EQ(widget.sizeHint(), QSize(108, 38));
    EXPECT_EQ(view->frame().size, (Size{100, 30}));
}

TEST_F(BoundSwitch, AClickMovesItToTheOtherSideAndSendsTheAction)
{
    widget.click();
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
    EXPECT_EQ(target->calls["press:"], 1);
    EXPECT_EQ(target->sender, view->slider().get());
    widget.click();
    EXPECT_EQ(view->slider()->onOffValue(), 0.0);
}

TEST_F(BoundSwitch, ArrowKeysMoveItAndSendTheActionAlsoAtTheEnd)
{
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
    EXPECT_EQ(target->calls["press:"], 2);
    press(Qt::Key_Left);
    EXPECT_EQ(view->slider()->onOffValue(), 0.0);
}

TEST_F(BoundSwitch, TheSpaceBarSwitchesOncePerPress)
{
    press(Qt::Key_Space);
    press(Qt::Key_Space, true);
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
    press(Qt::Key_Space);
    EXPECT_EQ(view->slider()->onOffValue(), 0.0);
    EXPECT_EQ(target->calls["press:"], 2);
}

TEST_F(BoundSwitch, OtherKeysAreLeftToTheWindow)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_TRUE(target->calls.empty());
}

TEST_F(BoundSwitch, ReadFromRightToLeftTheArrowsFollowTheEyes)
{
    widget.setLayoutDirection(Qt::RightToLeft);
    press(Qt::Key_Left);
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
    press(Qt::Key_Right);
    EXPECT_EQ(view->slider()->onOffValue(), 0.0);
}

TEST_F(BoundSwitch, AProgrammaticMoveShowsAndSendsNothing)
{
    view->setState(1, false);
    EXPECT_TRUE(widget.isOn());
    EXPECT_EQ(widget.position(), 1.0);
    EXPECT_TRUE(target->calls.empty());
}

TEST_F(BoundSwitch, DisablingItReachesTheWidget)
{
    view->setEnabled(false);
    EXPECT_FALSE(widget.isEnabled());
    view->setHidden(true);
    EXPECT_TRUE(widget.isHidden());
}

TEST_F(BoundSwitch, AssistiveTechnologyKnowsItAsASwitchWithAState)
{
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::CheckBox) << "the toolkit has no role of its own";
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Farview"));
    EXPECT_TRUE(accessible->state().checkable);
    EXPECT_FALSE(accessible->state().checked);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(accessible->state().checked);
    EXPECT_EQ(target->calls["press:"], 1);
}

TEST_F(BoundSwitch, TheSwitchOutlivesItsWidget)
{
    auto another = std::make_shared<QLNOnOffView>();
    {
        SwitchWidget shown(nullptr);
        shown.setImageSource({&pictures.bundle, pictures.files});
        ASSERT_TRUE(bindToWidget(another, &shown));
        EXPECT_NE(another->slider()->cell()->imageSource().bundle, nullptr);
    }
    EXPECT_EQ(another->slider()->cell()->imageSource().bundle, nullptr);
    another->setState(1);
    EXPECT_EQ(another->slider()->doubleValue(), 1.0);
}

} // namespace
} // namespace farview::test
