// HiDPI resolutions: a setting of all users, which only an administrator's rights can change.

#include "Source/FVEPreferencePane.h"

#include "Common/FVEPreferences.h"
#include "Common/NSApplication_Additions.h"
#include "Common/Rules/HiDPITexts.h"
#include "Platform/Authorization.h"
#include "Platform/Platform.h"
#include "Source/FVEEnableHiDPIController.h"

using farview::AuthorizationStatus;
using farview::Object;
using farview::URL;
using Obstacle = farview::Authorization::Obstacle;
using Role = farview::TextField::Role;

namespace
{

constexpr std::uint32_t lastSystemWithoutHiDPI = 0x000A06FF;
constexpr const char* rightOfHelpers = "com.apple.ServiceManagement.blesshelper";

std::string number(AuthorizationStatus status) { return std::to_string(static_cast<int>(status)); }

std::string withPath(std::string text, const std::string& path)
{
    constexpr std::string_view place = "%@";
    const auto at = text.find(place);
    return at == std::string::npos ? text : text.replace(at, place.size(), path);
}

} // namespace

void FVEPreferencePane::enableHiDPIBox()
{
    enableHiDPIResolutions()->setEnabled(BCDSystemVersionFunction() > lastSystemWithoutHiDPI &&
                                         !mAuthorizationIsUnderWay);
}

void FVEPreferencePane::enableHiDPIPressed(Object* /*sender*/)
{
    if (mAuthorizationIsUnderWay)
        return;
    // A window that is still open from an earlier click gives way: its question is out of date.
    closeHiDPIWindow();
    const auto controller = std::make_shared<FVEEnableHiDPIController>(mPlatform);
    mEnableHiDPIController = controller;
    controller->init();
    const auto handler = [weak = weak_from_this()](bool confirmed) {
        if (const auto pane = weak.lock())
            pane->hiDPIWindowWasAnswered(confirmed);
    };
    if (controller->showWindow(this, handler))
        describeHiDPI(*controller);
    else
        hiDPIWindowWasAnswered(false);
}

void FVEPreferencePane::describeHiDPI(FVEEnableHiDPIController& controller)
{
    const bool isEnabled = FVEPreferences::sharedAppPrefs().enableHiDPIResolutions();
    controller.explanationText()->setStringValue(localized(farview::hiDPIExplanation(isEnabled)));

    const URL tool = hiDPITool().value_or(URL());
    const Obstacle obstacle = mPlatform.authorization->obstacleOf(tool);
    if (obstacle.kind != Obstacle::Kind::none)
        return controller.showProgress(textForObstacle(obstacle), Role::error);
    const auto foreseen = [this, weak = controller.weak_from_this()](AuthorizationStatus status) {
        const auto asked = weak.lock();
        // The answer may come when OK was pressed already.
        if (asked && !mAuthorizationIsUnderWay)
            asked->showProgress(localized(farview::authorizationTrouble(status)), Role::error);
    };
    mPlatform.authorization->foresee(tool, weak_from_this(), foreseen);
}

std::string FVEPreferencePane::textForObstacle(const Obstacle& obstacle) const
{
    if (obstacle.kind == Obstacle::Kind::missing)
        return localized(farview::toolIsMissingText);
    return withPath(localized(farview::toolIsChangeableText), obstacle.path);
}

/// The tool that turns the setting in force around, whatever the box says.
FVEPreferencePane::OptionalURL FVEPreferencePane::hiDPITool() const
{
    return FVEPreferences::sharedAppPrefs().enableHiDPIResolutions() ? displayResolutionsOffURL()
                                                                     : displayResolutionsOnURL();
}

void FVEPreferencePane::hiDPIWindowWasAnswered(bool confirmed)
{
    if (mAuthorizationIsUnderWay)
        return;
    if (confirmed)
        authExecuteHelperWithToolURL(hiDPITool(), nullptr);
    else
        enableHiDPIResolutions()->setState(enableHiDPIResolutions()->state() == 0 ? 1 : 0);
    if (!mAuthorizationIsUnderWay)
        return closeHiDPIWindow();
    mEnableHiDPIController->setEnabled(false);
    mEnableHiDPIController->showProgress(localized("Waiting for an administrator…"), Role::normal);
}

void FVEPreferencePane::closeHiDPIWindow()
{
    const auto controller = std::exchange(mEnableHiDPIController, nullptr);
    if (controller)
        controller->close();
}

bool FVEPreferencePane::authExecuteHelperWithToolURL(const OptionalURL& tool,
                                                     std::string* /*error*/)
{
    if (mAuthorizationIsUnderWay)
        return false;
    mAuthorizationIsUnderWay = true;
    enableHiDPIBox();
    const URL url = tool.value_or(URL());
    // Nobody is asked for a password that would be of no use.
    if (mPlatform.authorization->obstacleOf(url).kind != Obstacle::Kind::none)
        helperHasEnded(AuthorizationStatus::toolExecuteFailure);
    else
        mPlatform.authorization->create(
            rightOfHelpers, url, weak_from_this(),
            [this, url](AuthorizationStatus status) { authorizationWasCreated(status, url); });
    return false;
}

void FVEPreferencePane::authorizationWasCreated(AuthorizationStatus status, const URL& tool)
{
    if (status != AuthorizationStatus::success) {
        log("Failed to create AuthorizationRef, return code " + number(status));
        return authorizationHasEnded();
    }
    mPlatform.authorization->executeWithPrivileges(
        tool, weak_from_this(), [this](AuthorizationStatus result) { helperHasEnded(result); });
}

void FVEPreferencePane::helperHasEnded(AuthorizationStatus status)
{
    if (status != AuthorizationStatus::success)
        log("Error: " + number(status));
    authorizationHasEnded();
}

void FVEPreferencePane::authorizationHasEnded()
{
    mAuthorizationIsUnderWay = false;
    enableHiDPIBox();
    closeHiDPIWindow();
}
