#pragma once

#include "Platform/Desktop/Screens/Mutter/MutterLayout.h"
#include "Platform/Desktop/Screens/Mutter/MutterSession.h"
#include "Platform/Desktop/Screens/PipeWireStream.h"
#include "Platform/Desktop/Screens/StreamInput.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace farview
{

/// A monitor that Mutter makes for us, beside everything else unless it is placed.
class MutterMonitor final : public VirtualScreen
{
public:
    MutterMonitor(RunLoop& loop, SessionBus& bus, std::shared_ptr<MutterLayout> layout,
                  const ScreenWish& wish, VirtualScreens::Delegate delegate);
    ~MutterMonitor() override;
    MutterMonitor(const MutterMonitor&) = delete;
    MutterMonitor& operator=(const MutterMonitor&) = delete;

    void resize(int width, int height) override;
    void setScale(double scale) override { mLayout->setScale(mPart, scale); }
    void place(PixelPoint corner) override { mLayout->place(mPart, corner); }
    ScreenSource& frames() override { return mStream.screen(); }
    CursorSource& cursor() override { return mStream.screen(); }
    InputSink& input() override { return mInput; }
    void setKeepsWindows(bool) override {}
    WindowKeeping windowKeeping() const override { return WindowKeeping::desktop; }

private:
    using News = std::function<void(VirtualScreenDelegate&)>;

    void prepare();
    void begin();
    void queue();
    void limitWaiting();
    void report(const ScreenGeometry& geometry);
    void tellOfPicture(News news);
    void tell(News news);
    void lose(ScreenObstacle reason);
    void endSoon(ScreenObstacle reason);
    void end(ScreenObstacle reason);
    void remove();

    RunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    VirtualScreens::Delegate mDelegate;
    std::shared_ptr<MutterLayout> mLayout;
    MutterPart mPart;
    std::shared_ptr<void> mWaiting;  ///< for Mutter, which has not for ever
    std::shared_ptr<void> mResizing; ///< while the last wish may get lost
    std::optional<ScreenGeometry> mTold;
    std::vector<News> mEarly; ///< before the monitor was told of
    bool mHasEnded = false;
    MutterSession mSession;
    StreamInput mInput{mSession, mPart.wish};
    PipeWireStream mStream;
};

} // namespace farview
