// The box for HiDPI resolutions: the window that asks, and the helper that runs with an
// administrator's rights.

#include "Platform/Fake/FakeAuthorization.h"
#include "Source/FVEEnableHiDPIController.h"
#include "Tests/Source/PaneFixture.h"

#include <gmock/gmock.h>

namespace
{

using farview::PropertyList;
using farview::Window;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = farview::FakeAuthorization::Request::Kind;
using Obstacle = farview::Authorization::Obstacle;
using Role = farview::TextField::Role;
using Status = farview::AuthorizationStatus;

constexpr const char* toolOn =
    "/opt/Farview Preferences.prefPane/Contents/Resources/com.quillon.displayresolutionson";
constexpr const char* toolOff =
    "/opt/Farview Preferences.prefPane/Contents/Resources/com.quillon.displayresolutionsoff";

class PaneHiDPI : public PaneFixture
{
protected:
    PaneHiDPI()
    {
        loader->wire = [this](const FakeInterfaceLoader::Owner& owner) {
            auto& controller = dynamic_cast<FVEEnableHiDPIController&>(*owner);
            controller.okButton()->setTarget(owner);
            controller.okButton()->setAction({"takeOK:"});
            controller.cancelButton()->setTarget(owner);
            controller.cancelButton()->setAction({"takeCancel:"});
            windows.push_back(controller.window());
        };
        pane->setInterfaceLoader(loader);
    }

    void storeSetting(const char* key, std::optional<PropertyList> value)
    {
        fake.preferences.writeAsAnotherProcess(key, std::move(value), kWindowServerDomain,
                                               farview::PreferencesUser::any,
                                               farview::PreferencesHost::current);
    }
    /// A pane on show; the setting stored before is in force.
    void open()
    {
        load();
        show();
        box().setTarget(pane);
        box().setAction({"enableHiDPIPressed:"});
    }
    void openAndClick()
    {
        open();
        click();
        ASSERT_NE(controller(), nullptr);
        ASSERT_TRUE(controller()->window()->isVisible());
    }
    void click() { box().performClick(nullptr); }
    farview::Button& box() const { return *pane->enableHiDPIResolutions(); }
    std::shared_ptr<FVEEnableHiDPIController> controller() const
    {
        return pane->enableHiDPIController();
    }
    void pressOK() { controller()->okButton()->performClick(nullptr); }
    void pressCancel() { controller()->cancelButton()->performClick(nullptr); }
    std::string explanation() const { return controller()->explanationText()->stringValue(); }
    std::string progress() const { return controller()->progressText()->stringValue(); }
    std::vector<std::string> runTools() const { return fake.authorization.runTools(); }
    auto visibleWindows() const
    {
        return std::count_if(windows.begin(), windows.end(),
                             [](const auto& each) { return each->isVisible(); });
    }
    bool logSays(const std::string& text) const { return fake.log.contains(text); }

    std::vector<std::shared_ptr<Window>> windows;
};

TEST_F(PaneHiDPI, ConfirmingRunsTheToolThatTurnsTheSettingInForceAround)
{
    struct Row {
        const char* key;
        bool isTicked;
        const char* tool;
    };
    for (const Row& row : {Row{"DisplayResolutionDisabled", false, toolOn},
                           Row{"DisplayResolutionEnabled", true, toolOff}}) {
        storeSetting("DisplayResolutionEnabled", std::nullopt);
        storeSetting("DisplayResolutionDisabled", std::nullopt);
        storeSetting(row.key, true);
        newPane();
        pane->setInterfaceLoader(loader);
        openAndClick();
        EXPECT_EQ(box().state() == 0, row.isTicked) << "the click has changed it";
        pressOK();
        EXPECT_EQ(runTools().back(), row.tool);
        hide();
    }
}

TEST_F(PaneHiDPI, WithoutASettingEitherClickRunsTheToolThatTurnsItOn)
{
    openAndClick();
    pressOK();
    click();
    EXPECT_EQ(box().state(), 0);
    pressOK();
    EXPECT_THAT(runTools(), ElementsAre(toolOn, toolOn));
}

TEST_F(PaneHiDPI, TheRightIsAskedForByItsNameBeforeTheToolRuns)
{
    openAndClick();
    pressOK();
    using Request = farview::FakeAuthorization::Request;
    const Request foreseen{Kind::foresee, "", toolOn};
    const Request created{Kind::create, "com.apple.ServiceManagement.blesshelper", toolOn};
    EXPECT_THAT(fake.authorization.requests(),
                ElementsAre(foreseen, created, Request{Kind::execute, "", toolOn}));
}

TEST_F(PaneHiDPI, TheSettingInForceDecidesWhenOKIsPressedNotWhenTheWindowOpened)
{
    openAndClick();
    storeSetting("DisplayResolutionEnabled", true);
    pressOK();
    EXPECT_THAT(runTools(), ElementsAre(toolOff));
}

TEST_F(PaneHiDPI, AfterOKTheWindowIsGoneAndTheBoxStaysAsItWasClicked)
{
    openAndClick();
    const auto window = controller()->window();
    pressOK();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(controller(), nullptr);
    EXPECT_EQ(box().state(), 1);
    EXPECT_TRUE(box().isEnabled());
}

TEST_F(PaneHiDPI, CancelTakesTheClickBackAndAsksForNothing)
{
    openAndClick();
    pressCancel();
    EXPECT_EQ(box().state(), 0);
    storeSetting("DisplayResolutionEnabled", true);
    hide();
    show();
    click();
    EXPECT_EQ(box().state(), 0);
    pressCancel();
    EXPECT_EQ(box().state(), 1);
    EXPECT_EQ(visibleWindows(), 0);
    EXPECT_THAT(runTools(), IsEmpty());
}

TEST_F(PaneHiDPI, ClosingTheWindowOtherwiseRunsNothingAndLeavesTheBoxAsClicked)
{
    openAndClick();
    controller()->window()->close();
    EXPECT_EQ(box().state(), 1);
    EXPECT_THAT(runTools(), IsEmpty());
    click();
    EXPECT_EQ(visibleWindows(), 1) << "it opens again";
}

TEST_F(PaneHiDPI, ASecondClickAsksAnewInOneWindow)
{
    openAndClick();
    const auto first = controller();
    click();
    EXPECT_NE(controller(), first);
    EXPECT_EQ(visibleWindows(), 1);
    EXPECT_EQ(box().state(), 0);
    pressCancel();
    EXPECT_EQ(box().state(), 1) << "the last click is taken back";
    EXPECT_EQ(visibleWindows(), 0);
}

TEST_F(PaneHiDPI, TheWindowSaysWhatIsInForceAndWhatOKWillDo)
{
    openAndClick();
    EXPECT_THAT(explanation(), HasSubstr("are off. OK turns them on for all users"));
    pressCancel();
    storeSetting("DisplayResolutionEnabled", true);
    click();
    EXPECT_THAT(explanation(), HasSubstr("are on. OK turns them off for all users"));
    EXPECT_EQ(progress(), "");
}

TEST_F(PaneHiDPI, TheWindowSaysBeforehandWhenItCannotWork)
{
    open();
    const std::pair<Status, const char*> rows[] = {
        {Status::interactionNotAllowed, "Nothing in this session can ask for a password."},
        {Status::internal, "The system cannot be asked for administrator rights."},
        {Status::denied, "This session may not change the setting."}};
    for (const auto& [status, text] : rows) {
        fake.authorization.setAnswer(Kind::foresee, status);
        click();
        EXPECT_THAT(progress(), HasSubstr(text));
        EXPECT_EQ(controller()->progressText()->textRole(), Role::error);
        EXPECT_TRUE(controller()->okButton()->isEnabled());
        pressCancel();
    }
}

TEST_F(PaneHiDPI, AToolThatOthersCanChangeIsRefusedAndTheWindowSaysWhyAndWhatToDo)
{
    fake.authorization.setObstacle({Obstacle::Kind::changeableByOthers, "/opt"});
    openAndClick();
    EXPECT_THAT(progress(), HasSubstr("can change /opt,"));
    EXPECT_THAT(progress(), HasSubstr("Install Farview"));
    pressOK();
    EXPECT_TRUE(logSays("Error: -60031"));
    EXPECT_THAT(fake.authorization.requests(), IsEmpty()) << "nobody is asked for a password";
    EXPECT_TRUE(box().isEnabled());
}

TEST_F(PaneHiDPI, AToolThatIsMissingIsAnErrorInTheLog)
{
    openAndClick();
    pane->setDisplayResolutionsOnURL(std::nullopt);
    pressOK();
    EXPECT_TRUE(logSays("Error: -60031"));
    EXPECT_THAT(runTools(), IsEmpty());
    click();
    EXPECT_THAT(progress(), HasSubstr("a part of Farview is missing"));
}

TEST_F(PaneHiDPI, EveryEndWithoutARightIsANumberInTheLogAndRunsNothing)
{
    openAndClick();
    const std::pair<Status, const char*> rows[] = {{Status::denied, "-60005"},
                                                   {Status::canceled, "-60006"},
                                                   {Status::interactionNotAllowed, "-60007"},
                                                   {Status::internal, "-60008"}};
    for (const auto& [status, text] : rows) {
        fake.authorization.setAnswer(Kind::create, status);
        const int before = box().state();
        pressOK();
        EXPECT_TRUE(logSays(std::string("Failed to create AuthorizationRef, return code ") + text));
        EXPECT_EQ(box().state(), before) << "as it was clicked";
        EXPECT_TRUE(box().isEnabled());
        EXPECT_EQ(visibleWindows(), 0);
        click();
    }
    EXPECT_THAT(runTools(), IsEmpty());
    EXPECT_EQ(fake.preferences.stored(kWindowServerDomain).size(), 0u);
}

TEST_F(PaneHiDPI, AToolThatFailsIsAnErrorInTheLog)
{
    fake.authorization.setAnswer(Kind::execute, Status::toolExecuteFailure);
    openAndClick();
    pressOK();
    EXPECT_TRUE(logSays("Error: -60031"));
    EXPECT_EQ(box().state(), 1);
}

TEST_F(PaneHiDPI, TheResultIsAlwaysNoAndTheErrorStaysUntouched)
{
    open();
    std::string error = "untouched";
    EXPECT_FALSE(pane->authExecuteHelperWithToolURL(pane->displayResolutionsOnURL(), &error));
    EXPECT_FALSE(pane->authExecuteHelperWithToolURL(std::nullopt, nullptr));
    EXPECT_EQ(error, "untouched");
    EXPECT_THAT(runTools(), ElementsAre(toolOn));
}

TEST_F(PaneHiDPI, BoxAndWindowTakeNothingWhileAnAdministratorIsAwaited)
{
    fake.authorization.hold(Kind::create);
    openAndClick();
    pressOK();
    EXPECT_FALSE(box().isEnabled());
    EXPECT_FALSE(controller()->okButton()->isEnabled());
    EXPECT_FALSE(controller()->cancelButton()->isEnabled());
    EXPECT_EQ(progress(), "Waiting for an administrator…");
    EXPECT_EQ(controller()->progressText()->textRole(), Role::normal);
    EXPECT_EQ(visibleWindows(), 1);
    controller()->perform({"takeOK:"}, nullptr);
    controller()->perform({"takeCancel:"}, nullptr);
    pane->perform({"enableHiDPIPressed:"}, nullptr);
    EXPECT_EQ(box().state(), 1);
    EXPECT_EQ(fake.authorization.requests().size(), 2u) << "asked once";

    EXPECT_TRUE(fake.authorization.answer(Status::success));
    EXPECT_TRUE(box().isEnabled());
    EXPECT_EQ(visibleWindows(), 0);
    EXPECT_THAT(runTools(), ElementsAre(toolOn));
}

TEST_F(PaneHiDPI, ALateWarningDoesNotReplaceWhatTheWindowWaitsFor)
{
    fake.authorization.hold(Kind::foresee);
    fake.authorization.hold(Kind::create);
    openAndClick();
    pressOK();
    EXPECT_TRUE(fake.authorization.answer(Status::interactionNotAllowed));
    EXPECT_EQ(progress(), "Waiting for an administrator…");
}

TEST_F(PaneHiDPI, AWarningForAWindowThatIsGoneIsDropped)
{
    fake.authorization.hold(Kind::foresee);
    openAndClick();
    click();
    EXPECT_TRUE(fake.authorization.answer(Status::denied));
    EXPECT_EQ(progress(), "") << "it was the first window's";
    pressCancel();
    EXPECT_TRUE(fake.authorization.answer(Status::denied));
}

TEST_F(PaneHiDPI, HidingThePaneClosesTheWindowAndTheAuthorizationGoesOn)
{
    fake.authorization.hold(Kind::create);
    openAndClick();
    pressOK();
    hide();
    EXPECT_EQ(visibleWindows(), 0);
    show();
    EXPECT_FALSE(box().isEnabled()) << "it still waits";
    EXPECT_TRUE(fake.authorization.answer(Status::success));
    EXPECT_TRUE(box().isEnabled());
    EXPECT_THAT(runTools(), ElementsAre(toolOn));
    hide();
}

TEST_F(PaneHiDPI, HidingThePaneClosesAWindowThatNobodyAnswered)
{
    openAndClick();
    hide();
    EXPECT_EQ(visibleWindows(), 0);
    EXPECT_THAT(runTools(), IsEmpty());
    show();
    EXPECT_EQ(box().state(), 0) << "as the setting is";
}

TEST_F(PaneHiDPI, APaneThatGoesWhileAnAdministratorIsAwaitedRunsNothing)
{
    fake.authorization.hold(Kind::create);
    openAndClick();
    pressOK();
    const std::weak_ptr<FVEEnableHiDPIController> window = controller();
    hide();
    pane.reset();
    EXPECT_TRUE(window.expired());
    EXPECT_TRUE(fake.authorization.answer(Status::success));
    EXPECT_THAT(runTools(), IsEmpty());
}

TEST_F(PaneHiDPI, APaneThatGoesWithItsWindowOpenLeavesNothingBehind)
{
    openAndClick();
    const std::weak_ptr<FVEEnableHiDPIController> window = controller();
    pane.reset();
    EXPECT_TRUE(window.expired());
}

TEST_F(PaneHiDPI, AWindowThatCannotBeLoadedTakesTheClickBack)
{
    loader->isBroken = true;
    open();
    click();
    EXPECT_EQ(box().state(), 0);
    EXPECT_TRUE(logSays("Cannot open the window for HiDPI resolutions: the file is broken"));
    pane->setInterfaceLoader(nullptr);
    click();
    EXPECT_EQ(box().state(), 0);
    EXPECT_EQ(controller(), nullptr);
}

TEST_F(PaneHiDPI, TheWindowIsLoadedAtItsFirstUse)
{
    open();
    EXPECT_THAT(loader->loaded, IsEmpty());
    click();
    EXPECT_THAT(loader->loaded, ElementsAre("EnableHiDPI"));
}

// The controller by itself.

TEST_F(PaneHiDPI, TheWindowIsCenteredOnEverySpaceAndKnowsItsController)
{
    openAndClick();
    const auto window = controller()->window();
    EXPECT_TRUE(window->isCentered());
    EXPECT_EQ(window->collectionBehavior(), 1u);
    EXPECT_EQ(window->delegate(), controller());
    EXPECT_EQ(window->besideView(), pane->tabView());
}

TEST_F(PaneHiDPI, NeitherButtonClosesTheWindowByItself)
{
    open();
    const auto own = std::make_shared<FVEEnableHiDPIController>(fake.platform());
    own->init();
    std::vector<bool> answers;
    ASSERT_TRUE(own->showWindow(pane.get(), [&](bool confirmed) { answers.push_back(confirmed); }));
    own->okButton()->performClick(nullptr);
    own->cancelButton()->performClick(nullptr);
    EXPECT_THAT(answers, ElementsAre(true, false));
    EXPECT_TRUE(own->window()->isVisible());
    own->window()->close();
    own->close();
    EXPECT_THAT(answers, ElementsAre(true, false)) << "closing calls no handler";
}

TEST_F(PaneHiDPI, WithoutAHandlerTheButtonsDoNothing)
{
    const auto own = std::make_shared<FVEEnableHiDPIController>(fake.platform());
    own->takeOK(nullptr);
    own->takeCancel(nullptr);
    own->close();
    EXPECT_FALSE(own->showWindow(nullptr, {}));
    for (const char* name : {"takeOK:", "takeCancel:", "windowWillClose:"})
        EXPECT_TRUE(own->respondsTo({name}));
    EXPECT_FALSE(own->respondsTo({"close:"}));
}

} // namespace
