#include "Controls/Switch/FVEChiseledTextButton.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>
#include <QCheckBox>
#include <QPushButton>

namespace farview::test
{
namespace
{

struct BoundButton : testing::Test {
    template <typename Widget, typename ButtonClass = Button> void show(const char* text)
    {
        widget = std::make_unique<Widget>(QString::fromUtf8(text));
        button = std::make_shared<ButtonClass>();
        button->setTarget(target);
        button->setAction({"press:"});
        ASSERT_TRUE(bindToWidget(button, widget.get()));
    }

    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    std::unique_ptr<QAbstractButton> widget;
    std::shared_ptr<Button> button;
};

TEST_F(BoundButton, AClickSendsTheActionWithTheButtonAsSender)
{
    show<QPushButton>("Go");
    widget->click();
    EXPECT_EQ(target->calls["press:"], 1);
    EXPECT_EQ(target->sender, button.get());
}

TEST_F(BoundButton, ACheckBoxFlipsBeforeTheActionIsSent)
{
    show<QCheckBox>("Option");
    int seen = -1;
    target->during = [&] { seen = button->state(); };
    widget->click();
    EXPECT_EQ(seen, 1);
    EXPECT_TRUE(widget->isChecked());
}

TEST_F(BoundButton, AProgrammaticChangeShowsAndSendsNothing)
{
    show<QCheckBox>("Option");
    button->setState(1);
    EXPECT_TRUE(widget->isChecked());
    EXPECT_TRUE(target->calls.empty());
}

TEST_F(BoundButton, AnActionThatUndoesTheClickLeavesTheBoxAsItWas)
{
    show<QCheckBox>("Option");
    target->during = [&] { button->setState(0); };
    widget->click();
    EXPECT_FALSE(widget->isChecked());
    EXPECT_EQ(target->calls["press:"], 1);
}

TEST_F(BoundButton, TheFilesStateIsTheControlsFirstState)
{
    widget = std::make_unique<QCheckBox>(QStringLiteral("Show the &icon"));
    widget->setChecked(true);
    widget->setEnabled(false);
    widget->setVisible(false);
    button = std::make_shared<Button>();
    ASSERT_TRUE(bindToWidget(button, widget.get()));
    EXPECT_EQ(button->kind(), Button::Kind::checkBox);
    EXPECT_EQ(button->state(), 1);
    EXPECT_EQ(button->title(), "Show the icon");
    EXPECT_FALSE(button->isEnabled());
    EXPECT_TRUE(button->isHidden());
}

TEST_F(BoundButton, ASetTitleIsShownLetterForLetterAndTheFilesKeepsItsShortcut)
{
    show<QPushButton>("&Go");
    button->setEnabled(false);
    EXPECT_EQ(widget->text(), QStringLiteral("&Go"));
    button->setTitle("R&D\n");
    EXPECT_EQ(widget->text(), QString::fromUtf8("R&&D␊"));
}

TEST_F(BoundButton, ADisabledOrHiddenButtonShowsThat)
{
    show<QPushButton>("Go");
    button->setEnabled(false);
    button->setHidden(true);
    EXPECT_FALSE(widget->isEnabled());
    EXPECT_TRUE(widget->isHidden());
    EXPECT_TRUE(widget->sizePolicy().retainSizeWhenHidden());
}

TEST_F(BoundButton, AnEngravedTextButtonIsAButtonToo)
{
    show<QPushButton, FVEChiseledTextButton>("On");
    widget->click();
    EXPECT_EQ(target->calls["press:"], 1);
}

TEST_F(BoundButton, AnActionMayCloseTheWindow)
{
    show<QPushButton>("Close");
    target->during = [&] { widget.release()->deleteLater(); };
    widget->click();
    turn();
    EXPECT_EQ(target->calls["press:"], 1);
    button->setTitle("still safe");
}

TEST_F(BoundButton, AClosedWindowLetsTheControlGo)
{
    show<QPushButton>("Go");
    std::weak_ptr<Button> weak = button;
    button.reset();
    EXPECT_FALSE(weak.expired());
    widget.reset();
    EXPECT_TRUE(weak.expired());
}

TEST_F(BoundButton, AWidgetThatCannotShowTheControlIsRefused)
{
    QWidget plain;
    EXPECT_FALSE(bindToWidget(std::make_shared<Button>(), &plain));
}

TEST_F(BoundButton, ABoxThatAssistiveTechnologyTicksSendsTheAction)
{
    show<QCheckBox>("Option");
    auto* action = QAccessible::queryAccessibleInterface(widget.get())->actionInterface();
    action->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(button->state(), 1);
    EXPECT_EQ(target->calls["press:"], 1);
}

TEST_F(BoundButton, AToolTipIsReadOutWithoutItsMarkup)
{
    show<QPushButton>("Go");
    button->setToolTip("R&D <now>");
    const auto* accessible = QAccessible::queryAccessibleInterface(widget.get());
    EXPECT_EQ(accessible->text(QAccessible::Description), u"R&D <now>"_qs);
}

} // namespace
} // namespace farview::test
