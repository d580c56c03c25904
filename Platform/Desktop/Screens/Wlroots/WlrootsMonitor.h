#pragma once

#include "Platform/Desktop/Screens/Wlroots/ScreenCopy.h"
#include "Platform/Desktop/Screens/Wlroots/SwayWindows.h"
#include "Platform/Desktop/Screens/Wlroots/WlrootsInput.h"
#include "Platform/Desktop/Screens/Wlroots/WlrootsSession.h"

namespace farview
{

/// Whether none of these screens can be one that the compositor arranges: it does that anew when
/// another one is given a place.
bool areAllPlaced(const std::vector<PixelRect>& screens);

/// An output that sway or Hyprland has made for us, beside everything else unless it is placed.
class WlrootsMonitor final : public VirtualScreen
{
public:
    WlrootsMonitor(RunLoop& loop, std::shared_ptr<WlrootsSession> session, const ScreenWish& wish,
                   VirtualScreens::Delegate delegate);
    ~WlrootsMonitor() override;
    WlrootsMonitor(const WlrootsMonitor&) = delete;
    WlrootsMonitor& operator=(const WlrootsMonitor&) = delete;

    void resize(int width, int height) override;
    void setScale(double scale) override;
    void place(PixelPoint corner) override;
    void setKeepsWindows(bool flag) override;
    WindowKeeping windowKeeping() const override;
    ScreenSource& frames() override { return mCopy.screen(); }
    CursorSource& cursor() override { return mCopy.screen(); }
    InputSink& input() override { return mInput; }

private:
    using News = std::function<void(VirtualScreenDelegate&)>;

    void start();
    void follow();
    void begin();
    void use(const std::string& name);
    void configure();
    void expectOutput();
    void look();
    void appear(const WaylandOutput& output);
    ScreenGeometry geometryOf(const WaylandOutput& output) const;
    void tell(News news);
    void end(ScreenObstacle reason);
    void remove();

    RunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    std::shared_ptr<WlrootsSession> mSession;
    VirtualScreens::Delegate mDelegate;
    ScreenWish mWish;
    std::shared_ptr<void> mWaiting = std::make_shared<int>(); ///< for the compositor
    std::optional<PixelPoint> mCorner;
    std::string mName; ///< of the output
    std::optional<ScreenGeometry> mTold;
    bool mHasBegun = false;
    bool mIsConfigured = false;
    bool mHasEnded = false;
    ScreenCopy mCopy;
    WlrootsInput mInput;
    std::optional<SwayWindows> mWindows;
    Subscription mWindowChanges;
    Subscription mChanges;
};

} // namespace farview
