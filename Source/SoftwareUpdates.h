#pragma once

#include "Common/Rules/UpdateSchedule.h"
#include "Platform/Types/NetworkKind.h"
#include "Platform/Types/UpdateStatus.h"
#include "Source/FVEUpdateSheetController.h"
#include "Source/WeakTimer.h"

#include <functional>
#include <memory>

namespace farview
{
struct Platform;
}

/// What the pane has to do with updates: when to look for one unasked, what the settings and the
/// sheet show of it, and what happens when the user answers. Made with `std::make_shared`; main
/// thread only; `platform` outlives it. `pane` owns it.
class SoftwareUpdates : public std::enable_shared_from_this<SoftwareUpdates>
{
public:
    /// A number from 0 to 1, another one each time.
    using RandomSource = std::function<double()>;

    SoftwareUpdates(farview::Platform& platform, std::weak_ptr<FVEPreferencePane> pane);

    void setRandomSource(RandomSource source) { mRandom = std::move(source); }

    /// The pane comes on show. Only shows what is stored; anything that takes time comes later.
    void begin();
    /// It goes. What is under way is given up, but for an installation.
    void end();
    /// The option is, or may be, another one: box, updater and plan follow it.
    void followOption();
    /// The user wants to know now.
    void checkNow();
    /// The updater has another status.
    void statusChanged();

    const std::shared_ptr<FVEUpdateSheetController>& sheet() const { return mSheet; }

private:
    void considerFirstShowing();
    void plan();
    void decide();
    void networkIsKnown(farview::NetworkKind kind);
    farview::UpdateScheduleInputs scheduleInputs() const;

    void storeOutcome(const farview::UpdateStatus& status);
    void showLine();
    void openSheet();
    void closeSheet();
    void answered(FVEUpdateSheetController::Choice choice);
    std::shared_ptr<FVEPreferencePane> pane() const { return mPane.lock(); }

    farview::Platform& mPlatform;
    std::weak_ptr<FVEPreferencePane> mPane;
    std::shared_ptr<FVEUpdateSheetController> mSheet;
    RandomSource mRandom;
    WeakTimer mBeginning;
    WeakTimer mTimer;
    std::shared_ptr<int> mShowing; ///< what is to happen during this showing is bound to it
    bool mMayCheckUnasked = false;
    std::string mUsualTitle;
    farview::UpdateStatus::Stage mStageBefore = farview::UpdateStatus::Stage::idle;
};
