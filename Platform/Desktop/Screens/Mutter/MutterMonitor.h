#pragma once

#include "Platform/Desktop/Screens/Mutter/DisplayConfig.h"
#include "Platform/Desktop/Screens/Mutter/MutterInput.h"
#include "Platform/Desktop/Screens/Mutter/MutterSession.h"
#include "Platform/Desktop/Screens/PipeWireStream.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace farview
{

/// A monitor that Mutter makes for us, beside everything else unless it is placed. Whenever
/// monitors come or change, Mutter arranges all of them anew; the user's are put back where they
/// were then.
class MutterMonitor final : public VirtualScreen
{
public:
    MutterMonitor(RunLoop& loop, SessionBus& bus, const ScreenWish& wish,
                  VirtualScreens::Delegate delegate);
    ~MutterMonitor() override;
    MutterMonitor(const MutterMonitor&) = delete;
    MutterMonitor& operator=(const MutterMonitor&) = delete;

    void resize(int width, int height) override;
    void setScale(double scale) override;
    void place(PixelPoint corner) override;
    ScreenSource& frames() override { return mStream.screen(); }
    CursorSource& cursor() override { return mStream.screen(); }
    InputSink& input() override { return mInput; }
    void setKeepsWindows(bool) override {}
    WindowKeeping windowKeeping() const override { return WindowKeeping::desktop; }

private:
    using News = std::function<void(VirtualScreenDelegate&)>;

    void begin();
    void useState(const DisplayState* state);
    void follow(const DisplayState& state);
    bool isThere(const DisplayState& state);
    void applyWish();
    void adoptLayout();
    DisplayLayout layoutWithOurs(std::optional<PixelPoint> corner) const;
    const MonitorMode* mode() const;
    void report(const ScreenGeometry& geometry);
    void tellOfPicture(News news);
    void tell(News news);
    void lose(ScreenObstacle reason);
    void endSoon(ScreenObstacle reason);
    void end(ScreenObstacle reason);
    void remove();

    RunLoop& mLoop;
    SessionBus& mBus;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    VirtualScreens::Delegate mDelegate;
    ScreenWish mWish;
    std::optional<PixelPoint> mCorner;   ///< where it is wanted; nothing: beside everything
    std::optional<DisplayState> mBefore; ///< without it
    std::optional<DisplayState> mState;  ///< with it
    std::optional<MonitorId> mOurs;
    LayoutJudge mJudge;
    DisplayLayout mUsers; ///< where the user wants the other monitors
    std::optional<ScreenGeometry> mTold;
    std::vector<News> mEarly; ///< before the monitor was told of
    bool mHasEnded = false;
    MutterSession mSession;
    MutterInput mInput{mSession, mWish};
    DisplayConfig mDisplays;
    PipeWireStream mStream;
};

} // namespace farview
