#include "Common/QLNOnOffView.h"
#include "Controls/Qt/AccessibleWidgets.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/SwitchWidget.h"
#include "Controls/TabView.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QTabWidget>

namespace farview::test
{
namespace
{

TEST(BoundTextField, MarkupInAForeignTextIsText)
{
    QLabel label;
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    field->setStringValue("<b>bold</b>\n\x07");
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(label.text(), QString::fromUtf8("<b>bold</b>\n␇"));
}

TEST(BoundTextField, TheFilesTextIsKeptUntilAnotherIsSet)
{
    QLabel label(QStringLiteral("Status"));
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    EXPECT_EQ(field->stringValue(), "Status");
    field->setHidden(true);
    EXPECT_EQ(label.text(), QStringLiteral("Status"));
    field->setStringValue("");
    EXPECT_TRUE(label.text().isEmpty());
}

TEST(BoundTextField, AToolTipIsPlainText)
{
    QLabel label;
    const auto field = std::make_shared<TextField>();
    ASSERT_TRUE(bindToWidget(field, &label));
    field->setToolTip("<img src=x>");
    EXPECT_EQ(label.toolTip(), QStringLiteral("<qt>&lt;img src=x&gt;</qt>"));
}

TEST(BoundImageView, TheSignIsLoadedWhenItIsFirstSeen)
{
    QLabel label;
    label.setVisible(false);
    const auto image = std::make_shared<ImageView>();
    ASSERT_TRUE(bindToWidget(image, &label));
    EXPECT_TRUE(label.pixmap(Qt::ReturnByValue).isNull());
    image->setHidden(false);
    EXPECT_FALSE(label.pixmap(Qt::ReturnByValue).isNull());
}

TEST(BoundProgressIndicator, ItTurnsOnlyWhileItIsSeenAndAnimating)
{
    QWidget window;
    auto* spinner = new SpinnerWidget(&window);
    spinner->setVisible(false);
    const auto indicator = std::make_shared<ProgressIndicator>();
    ASSERT_TRUE(bindToWidget(indicator, spinner));
    EXPECT_TRUE(indicator->isHidden());
    window.show();
    indicator->startAnimation();
    EXPECT_FALSE(spinner->isTurning());
    indicator->setHidden(false);
    EXPECT_TRUE(spinner->isTurning());
    window.hide();
    EXPECT_FALSE(spinner->isTurning());
    window.show();
    EXPECT_TRUE(spinner->isTurning());
    indicator->stopAnimation();
    EXPECT_FALSE(spinner->isTurning());
}

struct BoundTabs : testing::Test {
    BoundTabs()
    {
        for (const char* name : {"VirtualScreen", "Settings"}) {
            auto* page = new QWidget;
            page->setObjectName(QString::fromLatin1(name));
            widget.addTab(page, QString::fromLatin1(name));
        }
        EXPECT_TRUE(bindToWidget(tabs, &widget));
    }

    QTabWidget widget;
    std::shared_ptr<TabView> tabs = std::make_shared<TabView>();
};

TEST_F(BoundTabs, PagesAreKnownByTheirObjectNames)
{
    EXPECT_EQ(tabs->identifiers(), (std::vector<std::string>{"VirtualScreen", "Settings"}));
    tabs->selectTabViewItemWithIdentifier("Settings");
    EXPECT_EQ(widget.currentIndex(), 1);
    tabs->selectFirstTabViewItem(nullptr);
    EXPECT_EQ(widget.currentIndex(), 0);
}

TEST_F(BoundTabs, TheUsersChoiceReachesTheControl)
{
    widget.setCurrentIndex(1);
    EXPECT_EQ(tabs->selectedIdentifier(), "Settings");
}

struct BoundSwitch : testing::Test {
    BoundSwitch()
    {
        installAccessibleWidgets();
        widget.setAccessibleName(QStringLiteral("Farview"));
        view->setTarget(target);
        view->setAction({"press:"});
        EXPECT_TRUE(bindToWidget(view, &widget));
    }
    void press(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }

    std::shared_ptr<RecordingTarget> target = std::make_shared<RecordingTarget>();
    SwitchWidget widget{nullptr};
    std::shared_ptr<QLNOnOffView> view = std::make_shared<QLNOnOffView>();
};

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

TEST_F(BoundSwitch, ReadFromRightToLeftTheArrowsFollowTheEyes)
{
    widget.setLayoutDirection(Qt::RightToLeft);
    press(Qt::Key_Left);
    EXPECT_EQ(view->slider()->onOffValue(), 1.0);
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

TEST_F(BoundSwitch, AssistiveTechnologyKnowsItAsACheckBoxWithAState)
{
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::CheckBox);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Farview"));
    EXPECT_TRUE(accessible->state().checkable);
    EXPECT_FALSE(accessible->state().checked);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(accessible->state().checked);
    EXPECT_EQ(target->calls["press:"], 1);
}

} // namespace
} // namespace farview::test
