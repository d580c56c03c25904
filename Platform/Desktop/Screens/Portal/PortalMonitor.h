#pragma once

#include "Platform/Desktop/Screens/PipeWireStream.h"
#include "Platform/Desktop/Screens/Portal/PortalSession.h"
#include "Platform/Desktop/Screens/StreamInput.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>

namespace farview
{

/// A monitor that the desktop's portal shows: one of ours where the portal makes such, else one of
/// the user's, which nothing changes.
class PortalMonitor final : public VirtualScreen
{
public:
    /// Without a picture after this time, the user is said to be asked.
    static constexpr Duration longestUnasked{1.0};

    PortalMonitor(RunLoop& loop, SessionBus& bus, PortalMemory memory, const ScreenWish& wish,
                  VirtualScreens::Delegate delegate);
    ~PortalMonitor() override { remove(); }
    PortalMonitor(const PortalMonitor&) = delete;
    PortalMonitor& operator=(const PortalMonitor&) = delete;

    void resize(int width, int height) override;
    void setScale(double) override {}
    void place(PixelPoint) override {}
    ScreenSource& frames() override { return mStream.screen(); }
    CursorSource& cursor() override;
    InputSink& input() override { return mInput; }
    void setKeepsWindows(bool) override {}
    WindowKeeping windowKeeping() const override { return WindowKeeping::nobody; }

private:
    void begin();
    void awaitUser();
    void connect(PortalStream stream);
    void report(int width, int height);
    ScreenGeometry geometry(int width, int height);
    void tell(std::function<void(VirtualScreenDelegate&)> news);
    void end(ScreenObstacle reason);
    void remove();

    RunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    VirtualScreens::Delegate mDelegate;
    ScreenWish mWish;
    PortalPlan mPlan;
    std::optional<PixelRect> mArea; ///< as it was when it began
    double mScale = 0;              ///< 0: not known yet
    bool mIsConnected = false;
    bool mHasEnded = false;
    CursorInFrames mCursorInFrames;
    PortalSession mSession;
    StreamInput mInput{mSession, mWish};
    PipeWireStream mStream;
};

} // namespace farview
