#pragma once

#include "Platform/Authorization.h"
#include "Platform/Types/URL.h"

#include <memory>
#include <optional>
#include <string>

namespace farview
{
struct Platform;
}

class FVEEnableHiDPIController;
class FVEPreferencePane;

/// Turns HiDPI resolutions on or off: a setting of all users, which only an administrator's rights
/// can change. Main thread only. `pane` owns it; `platform` outlives both.
class HiDPIChange
{
public:
    HiDPIChange(farview::Platform& platform, FVEPreferencePane& pane)
        : mPlatform(platform), mPane(pane)
    {
    }

    /// Lets the box be clicked where there are such resolutions and no change is under way.
    void enableBox();
    /// Asks the user in a window whether to change the setting, and changes it.
    void begin();
    void closeWindow();
    /// Asks for an administrator's rights and runs the tool with them, while everything else goes
    /// on. How it ends is in the log.
    void execute(const std::optional<farview::URL>& tool);

    /// The window; null while there is none.
    const std::shared_ptr<FVEEnableHiDPIController>& controller() const { return mController; }

private:
    void describe(FVEEnableHiDPIController& controller);
    std::string textForObstacle(const farview::Authorization::Obstacle& obstacle) const;
    const std::optional<farview::URL>& tool() const;
    void windowWasAnswered(bool confirmed);
    void authorizationWasCreated(farview::AuthorizationStatus status, const farview::URL& tool);
    void helperHasEnded(farview::AuthorizationStatus status);
    void end();
    void log(const std::string& message);

    farview::Platform& mPlatform;
    FVEPreferencePane& mPane;
    std::shared_ptr<FVEEnableHiDPIController> mController;
    bool mIsUnderWay = false; ///< the tool runs, or its rights are awaited
};
