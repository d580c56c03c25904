#include "Source/HiDPIChange.h"

#include "Common/FVEPreferences.h"
#include "Common/NSApplication_Additions.h"
#include "Common/Rules/FilledText.h"
#include "Common/Rules/HiDPITexts.h"
#include "Platform/Log.h"
#include "Platform/Platform.h"
#include "Source/FVEEnableHiDPIController.h"
#include "Source/FVEPreferencePane.h"

using farview::AuthorizationStatus;
using farview::URL;
using Obstacle = farview::Authorization::Obstacle;
using Role = farview::TextField::Role;

namespace
{

constexpr std::uint32_t lastSystemWithoutHiDPI = 0x000A06FF;
constexpr const char* rightOfHelpers = "com.apple.ServiceManagement.blesshelper";

std::string number(AuthorizationStatus status) { return std::to_string(static_cast<int>(status)); }

} // namespace

void HiDPIChange::enableBox()
{
    mPane.enableHiDPIResolutions()->setEnabled(
        BCDSystemVersionFunction() > lastSystemWithoutHiDPI && !mIsUnderWay);
}

void HiDPIChange::begin()
{
    if (mIsUnderWay)
        return;
    // A window that is still open from an earlier click gives way: its question is out of date.
    closeWindow();
    const auto controller = std::make_shared<FVEEnableHiDPIController>(mPlatform);
    mController = controller;
    controller->init();
    const auto handler = [this, weak = mPane.weak_from_this()](bool confirmed) {
        if (const auto pane = weak.lock())
            windowWasAnswered(confirmed);
    };
    if (controller->showWindow(&mPane, handler))
        describe(*controller);
    else
        windowWasAnswered(false);
}

void HiDPIChange::describe(FVEEnableHiDPIController& controller)
{
    const bool isEnabled = FVEPreferences::sharedAppPrefs().enableHiDPIResolutions();
    controller.explanationText()->setStringValue(
        mPane.localized(farview::hiDPIExplanation(isEnabled)));

    const URL url = tool().value_or(URL());
    const Obstacle obstacle = mPlatform.authorization->obstacleOf(url);
    if (obstacle.kind != Obstacle::Kind::none)
        return controller.showProgress(textForObstacle(obstacle), Role::error);
    const auto foreseen = [this, weak = controller.weak_from_this()](AuthorizationStatus status) {
        const auto asked = weak.lock();
        // The answer may come when OK was pressed already.
        if (asked && !mIsUnderWay)
            asked->showProgress(mPane.localized(farview::authorizationTrouble(status)),
                                Role::error);
    };
    mPlatform.authorization->foresee(url, mPane.weak_from_this(), foreseen);
}

std::string HiDPIChange::textForObstacle(const Obstacle& obstacle) const
{
    if (obstacle.kind == Obstacle::Kind::missing)
        return mPane.localized(farview::toolIsMissingText);
    return farview::filledText(mPane.localized(farview::toolIsChangeableText), obstacle.path);
}

/// The tool that turns the setting in force around, whatever the box says.
const std::optional<URL>& HiDPIChange::tool() const
{
    return FVEPreferences::sharedAppPrefs().enableHiDPIResolutions()
               ? mPane.displayResolutionsOffURL()
               : mPane.displayResolutionsOnURL();
}

void HiDPIChange::windowWasAnswered(bool confirmed)
{
    if (mIsUnderWay)
        return;
    auto& box = *mPane.enableHiDPIResolutions();
    if (confirmed)
        execute(tool());
    else
        box.setState(box.state() == 0 ? 1 : 0);
    if (!mIsUnderWay)
        return closeWindow();
    mController->setEnabled(false);
    mController->showProgress(mPane.localized("Waiting for an administrator…"), Role::normal);
}

void HiDPIChange::closeWindow()
{
    const auto controller = std::exchange(mController, nullptr);
    if (controller)
        controller->close();
}

void HiDPIChange::execute(const std::optional<URL>& tool)
{
    if (mIsUnderWay)
        return;
    mIsUnderWay = true;
    enableBox();
    const URL url = tool.value_or(URL());
    // Nobody is asked for a password that would be of no use.
    if (mPlatform.authorization->obstacleOf(url).kind != Obstacle::Kind::none)
        helperHasEnded(AuthorizationStatus::toolExecuteFailure);
    else
        mPlatform.authorization->create(
            rightOfHelpers, url, mPane.weak_from_this(),
            [this, url](AuthorizationStatus status) { authorizationWasCreated(status, url); });
}

void HiDPIChange::authorizationWasCreated(AuthorizationStatus status, const URL& tool)
{
    if (status != AuthorizationStatus::success) {
        log("Failed to create AuthorizationRef, return code " + number(status));
        return end();
    }
    mPlatform.authorization->executeWithPrivileges(
        tool, mPane.weak_from_this(),
        [this](AuthorizationStatus result) { helperHasEnded(result); });
}

void HiDPIChange::helperHasEnded(AuthorizationStatus status)
{
    if (status != AuthorizationStatus::success)
        log("Error: " + number(status));
    end();
}

void HiDPIChange::end()
{
    mIsUnderWay = false;
    enableBox();
    closeWindow();
}

void HiDPIChange::log(const std::string& message)
{
    mPlatform.log->write(farview::LogLevel::warning, message);
}
