#include "Source/SoftwareUpdates.h"

#include "Common/FVEPreferences.h"
#include "Common/FVEUpdater.h"
#include "Common/Rules/FilledText.h"
#include "Common/Rules/UpdateTexts.h"
#include "Platform/Clock.h"
#include "Platform/Log.h"
#include "Platform/NetworkCondition.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Source/FVEPreferencePane.h"

#include <ctime>
#include <random>

using farview::Duration;
using farview::UpdateStatus;
using Stage = farview::UpdateStatus::Stage;

namespace
{

/// The window is on the screen by then, and what it started has started.
constexpr Duration pauseAfterShowing{3.0};

double randomNumber()
{
    static std::minstd_rand engine{std::random_device{}()};
    return std::uniform_real_distribution<>(0, 1)(engine);
}

farview::LocalTime localTime(double secondsSince1970)
{
    const auto time = static_cast<std::time_t>(secondsSince1970);
    const std::tm* local = std::localtime(&time);
    if (!local)
        return {};
    return {local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour,
            local->tm_min};
}

} // namespace

SoftwareUpdates::SoftwareUpdates(farview::Platform& platform, std::weak_ptr<FVEPreferencePane> pane)
    : mPlatform(platform), mPane(std::move(pane)), mRandom(randomNumber)
{
}

void SoftwareUpdates::begin()
{
    mShowing = std::make_shared<int>();
    auto& updater = FVEUpdater::sharedUpdater();
    updater.setDelegate(mPane);
    mStageBefore = updater.status().stage;
    if (mUsualTitle.empty())
        mUsualTitle = pane()->checkNowForUpdateButton()->title();
    followOption();
    showLine();
    replaceTimer(mBeginning, mPlatform.runLoop->scheduledTimer(pauseAfterShowing, false, mShowing,
                                                               [this] { considerFirstShowing(); }));
}

void SoftwareUpdates::end()
{
    mShowing = nullptr;
    replaceTimer(mBeginning, {});
    replaceTimer(mTimer, {});
    FVEUpdater::sharedUpdater().cancel();
    closeSheet();
}

/// Somebody who sees the panel for the first time could not yet say no.
void SoftwareUpdates::considerFirstShowing()
{
    auto& preferences = FVEPreferences::sharedAppPrefs();
    mMayCheckUnasked = preferences.autoUpdateOptionShown();
    if (!mMayCheckUnasked)
        preferences.setAutoUpdateOptionShown(true);
    plan();
}

void SoftwareUpdates::followOption()
{
    const bool isWanted = FVEPreferences::sharedAppPrefs().autoUpdateOption();
    auto& updater = FVEUpdater::sharedUpdater();
    pane()->autoUpdateCheckbox()->setState(isWanted ? 1 : 0);
    if (updater.automaticallyChecksForUpdates() == isWanted)
        return;
    updater.setAutomaticallyChecksForUpdates(isWanted);
    plan();
}

farview::UpdateScheduleInputs SoftwareUpdates::scheduleInputs() const
{
    const auto last = FVEPreferences::sharedAppPrefs().lastUpdateCheck();
    const auto now = mPlatform.clock->date().time_since_epoch();
    return {FVEUpdater::sharedUpdater().automaticallyChecksForUpdates(), mMayCheckUnasked,
            last ? std::optional(last->secondsSince1970) : std::nullopt,
            std::chrono::duration<double>(now).count()};
}

void SoftwareUpdates::plan()
{
    const auto pause = farview::secondsToNextUpdateDecision(scheduleInputs(), mRandom());
    if (!pause || !mShowing)
        return replaceTimer(mTimer, {});
    replaceTimer(mTimer, mPlatform.runLoop->scheduledTimer(Duration(*pause), false, mShowing,
                                                           [this] { decide(); }));
}

void SoftwareUpdates::decide()
{
    if (farview::isUpdateCheckDue(scheduleInputs()))
        mPlatform.networkCondition->ask(
            mShowing, [this](farview::NetworkKind kind) { networkIsKnown(kind); });
    else
        plan();
}

void SoftwareUpdates::networkIsKnown(farview::NetworkKind kind)
{
    // The user may have changed the option meanwhile, or looked already.
    if (kind == farview::NetworkKind::unmetered && farview::isUpdateCheckDue(scheduleInputs()))
        FVEUpdater::sharedUpdater().checkForUpdates();
    plan();
}

void SoftwareUpdates::checkNow()
{
    auto& updater = FVEUpdater::sharedUpdater();
    openSheet();
    const Stage stage = updater.status().stage;
    // What is found or installed is shown, not looked for once more.
    if (stage != Stage::found && stage != Stage::installed)
        updater.checkForUpdates();
    statusChanged();
}

void SoftwareUpdates::statusChanged()
{
    auto& updater = FVEUpdater::sharedUpdater();
    const UpdateStatus& status = updater.status();
    if (status.stage != mStageBefore)
        storeOutcome(status);
    mStageBefore = status.stage;
    showLine();
    if (status.stage == Stage::cancelled)
        return closeSheet();
    if (mSheet && mSheet->isOpen())
        mSheet->show(*pane(), status, pane()->bundleVersion());
    if (status.stage == Stage::ready)
        updater.installUpdate();
}

void SoftwareUpdates::storeOutcome(const UpdateStatus& status)
{
    const std::string outcome = farview::updateOutcome(status);
    // An update that failed does not change how the look for it ended.
    const bool failedLater = status.stage == Stage::failed && !status.version.empty();
    if (outcome.empty() || failedLater)
        return;
    const auto now = mPlatform.clock->date().time_since_epoch();
    FVEPreferences::sharedAppPrefs().setLastUpdateCheck(
        {std::chrono::duration<double>(now).count()}, outcome);
}

void SoftwareUpdates::showLine()
{
    const auto& status = FVEUpdater::sharedUpdater().status();
    auto& preferences = FVEPreferences::sharedAppPrefs();
    const auto words = [this](const farview::TextWithValue& text) {
        return farview::filledText(pane()->localized(text.text), text.value);
    };
    std::string line = words(farview::updateNews(status));
    if (line.empty()) {
        const auto last = preferences.lastUpdateCheck();
        const auto now = std::chrono::system_clock::to_time_t(mPlatform.clock->date());
        const auto at = last ? std::optional(localTime(last->secondsSince1970)) : std::nullopt;
        line = words(farview::lastUpdateCheckText(at, localTime(static_cast<double>(now))));
        const auto outcome = farview::updateOutcomeText(preferences.lastUpdateOutcome());
        if (last && !outcome.empty())
            line += " " + pane()->localized(outcome);
    }
    pane()->updateStatusLabel()->setStringValue(line);
    const std::string title = farview::updateButtonTitle(status);
    pane()->checkNowForUpdateButton()->setTitle(title.empty() ? mUsualTitle
                                                              : pane()->localized(title));
}

void SoftwareUpdates::openSheet()
{
    if (!mSheet) {
        const auto weak = weak_from_this();
        mSheet = std::make_shared<FVEUpdateSheetController>(
            [weak](FVEUpdateSheetController::Choice choice) {
                if (const auto updates = weak.lock())
                    updates->answered(choice);
            });
    }
    std::string error;
    if (!mSheet->open(*pane(), error))
        mPlatform.log->write(farview::LogLevel::warning,
                             "Cannot open the sheet for updates: " + error);
}

void SoftwareUpdates::closeSheet()
{
    if (mSheet)
        mSheet->close();
}

void SoftwareUpdates::answered(FVEUpdateSheetController::Choice choice)
{
    auto& updater = FVEUpdater::sharedUpdater();
    const Stage stage = updater.status().stage;
    const bool goesOn = choice == FVEUpdateSheetController::Choice::first;
    if (goesOn && stage == Stage::found)
        return updater.downloadUpdate();
    if (!goesOn && farview::isUnderWay(stage))
        return updater.cancel();
    closeSheet();
    if (goesOn && stage == Stage::installed)
        mPlatform.application->reopen();
}
