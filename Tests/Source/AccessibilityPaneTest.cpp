#include "Source/AccessibilityPane.h"

#include "Platform/Fake/FakeAccessibility.h"
#include "Platform/Fake/FakeAccessibilitySwitch.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Lifetime = AccessibilitySwitch::Lifetime;
using Problem = AccessibilitySwitch::Problem;

class AccessibilityPaneTest : public testing::Test
{
protected:
    AccessibilityPaneTest()
    {
        for (const auto& outlet : pane->outlets())
            outlet.connect(*pane);
        pane->accessibilityCheckbox()->setKind(Button::Kind::checkBox);
        pane->accessibilityCheckbox()->setTarget(pane);
        pane->accessibilityCheckbox()->setAction({"accessibilityPressed:"});
    }
    void showWith(AccessibilitySwitch::State state)
    {
        desktop.setState(state);
        pane->willSelect();
        desktop.deliver();
    }
    void click() { pane->accessibilityCheckbox()->performClick(nullptr); }
    int box() const { return pane->accessibilityCheckbox()->state(); }
    bool canBeClicked() const { return pane->accessibilityCheckbox()->isEnabled(); }
    std::string lifetime() const { return pane->lifetimeLabel()->stringValue(); }
    std::string windows() const { return pane->windowsLabel()->stringValue(); }
    std::string problem() const { return pane->problemLabel()->stringValue(); }

    FakeAccessibility accessibility;
    FakeAccessibilitySwitch desktop;
    std::shared_ptr<AccessibilityPane> pane =
        std::make_shared<AccessibilityPane>(accessibility, desktop, nullptr);
};

TEST_F(AccessibilityPaneTest, ClaimsNothingUntilTheDesktopHasAnswered)
{
    pane->willSelect();
    EXPECT_FALSE(canBeClicked());
    EXPECT_EQ(lifetime() + windows() + problem(), "");
}

TEST_F(AccessibilityPaneTest, ShowsTheSwitchAndHowLongAChoiceHolds)
{
    showWith({true, Problem::none, Lifetime::kept});
    EXPECT_EQ(box(), 1);
    EXPECT_TRUE(canBeClicked());
    EXPECT_NE(lifetime().find("keeps this choice"), std::string::npos);
    showWith({false, Problem::none, Lifetime::session});
    EXPECT_EQ(box(), 0);
    EXPECT_NE(lifetime().find("until you log out"), std::string::npos);
}

TEST_F(AccessibilityPaneTest, AClickSetsTheSwitchAndWaitsForTheDesktop)
{
    showWith({false, Problem::none, Lifetime::session});
    click();
    EXPECT_EQ(desktop.requests(), std::vector<bool>{true});
    EXPECT_EQ(box(), 1);
    EXPECT_FALSE(canBeClicked());
    click();
    EXPECT_EQ(desktop.requests().size(), 1u) << "one change at a time";
    desktop.deliver();
    EXPECT_TRUE(canBeClicked());
    EXPECT_EQ(box(), 1);
    EXPECT_EQ(problem(), "");
    click();
    desktop.deliver();
    EXPECT_EQ(desktop.requests(), (std::vector<bool>{true, false}));
    EXPECT_EQ(box(), 0);
}

TEST_F(AccessibilityPaneTest, AFailedChangeIsToldInWordsAndTheBoxShowsWhatHolds)
{
    showWith({false, Problem::none, Lifetime::session});
    for (const auto failure : {Problem::noService, Problem::noAnswer, Problem::notTaken}) {
        desktop.setProblem(failure);
        click();
        desktop.deliver();
        EXPECT_EQ(box(), 0);
        EXPECT_TRUE(canBeClicked()) << "it can be tried again";
        EXPECT_NE(problem(), "");
        EXPECT_EQ(pane->problemLabel()->textRole(), TextField::Role::error);
    }
    desktop.setProblem(Problem::none);
    click();
    desktop.deliver();
    EXPECT_EQ(problem(), "");
}

TEST_F(AccessibilityPaneTest, WhereNobodyOffersTheSwitchItSaysSoAndCannotBeClicked)
{
    showWith({std::nullopt, Problem::noService, Lifetime::session});
    EXPECT_FALSE(canBeClicked());
    EXPECT_NE(problem().find("no accessibility service"), std::string::npos);
    EXPECT_EQ(lifetime(), "") << "nothing is promised";
}

TEST_F(AccessibilityPaneTest, SaysWhatTheSwitchMeansForFarview)
{
    showWith({false, Problem::none, Lifetime::session});
    EXPECT_EQ(windows(), "");
    accessibility.setEnabled(true);
    showWith({false, Problem::none, Lifetime::session});
    EXPECT_NE(windows().find("even while this is off"), std::string::npos);
    showWith({true, Problem::none, Lifetime::session});
    EXPECT_NE(windows().find("tick that option"), std::string::npos);
}

TEST_F(AccessibilityPaneTest, FollowsChangesOfOthersWhileItIsShown)
{
    showWith({false, Problem::none, Lifetime::session});
    desktop.setState({true, Problem::none, Lifetime::session});
    desktop.deliver();
    EXPECT_EQ(box(), 1);
    pane->willUnselect();
    EXPECT_FALSE(desktop.isObserved());
}

TEST_F(AccessibilityPaneTest, HiddenDuringAChangeItShowsTheResultAtTheNextShowing)
{
    showWith({false, Problem::none, Lifetime::session});
    click();
    pane->willUnselect();
    desktop.deliver();
    pane->willSelect();
    desktop.deliver();
    EXPECT_EQ(box(), 1);
    EXPECT_TRUE(canBeClicked());
}

TEST_F(AccessibilityPaneTest, MayGoDuringAChange)
{
    showWith({false, Problem::none, Lifetime::session});
    click();
    pane.reset();
    desktop.deliver();
    EXPECT_FALSE(desktop.isObserved());
}

TEST_F(AccessibilityPaneTest, KnowsItsOneOperation)
{
    EXPECT_TRUE(pane->respondsTo({"accessibilityPressed:"}));
    EXPECT_FALSE(pane->perform({"somethingElse:"}, nullptr));
}

} // namespace
} // namespace farview
