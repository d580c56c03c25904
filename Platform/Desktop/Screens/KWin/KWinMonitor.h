#pragma once

#include "Platform/Desktop/Screens/KWin/KWinInput.h"
#include "Platform/Desktop/Screens/KWin/KWinStream.h"
#include "Platform/Desktop/Screens/KWin/WindowMove.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace farview
{

/// What is in the way of a monitor at that compositor, once its globals are known.
std::optional<ScreenObstacle> obstacleAt(const WaylandConnection& connection);

/// The pixels and the pointer of what is shown at the moment. Any thread.
class ShownScreen final : public ScreenSource, public CursorSource
{
public:
    void show(CapturedScreen& screen);

    std::optional<ScreenFrame> takeFrame() override;
    bool isInFrames() const override { return false; }
    std::optional<CursorImage> takeImage() override;
    std::optional<PixelPoint> position() override;

private:
    std::shared_ptr<CapturedScreen> screen();

    std::mutex mMutex;
    std::shared_ptr<CapturedScreen> mScreen;
};

/// A monitor that KWin makes for us. KWin gives it a place and remembers that. Its outputs have one
/// size for ever: for another one it gets another output, to which the windows go.
class KWinMonitor final : public VirtualScreen
{
public:
    KWinMonitor(RunLoop& loop, SessionBus& bus, const ScreenWish& wish,
                VirtualScreens::Delegate delegate, std::uint32_t firstFinger);
    ~KWinMonitor() override;
    KWinMonitor(const KWinMonitor&) = delete;
    KWinMonitor& operator=(const KWinMonitor&) = delete;

    void resize(int width, int height) override;
    void setScale(double scale) override;
    void place(PixelPoint corner) override;
    ScreenSource& frames() override { return mScreen; }
    CursorSource& cursor() override { return mScreen; }
    InputSink& input() override { return mInput; }
    void setKeepsWindows(bool) override {}
    WindowKeeping windowKeeping() const override { return WindowKeeping::desktop; }

private:
    using News = std::function<void(VirtualScreenDelegate&)>;

    void bind();
    void makeStream();
    std::string freeName() const;
    void limitWaiting();
    void follow();
    void followNext();
    void useNext();
    bool change(const std::vector<KWinOutput>& outputs);
    void report(const KWinOutput& ours);
    const KWinOutput* outputOf(const KWinStream* stream,
                               const std::vector<KWinOutput>& outputs) const;
    void streamEnded(int number, ScreenObstacle reason);
    void tell(News news);
    void endSoon(ScreenObstacle reason);
    void end(ScreenObstacle reason);
    void remove();

    RunLoop& mLoop;
    SessionBus& mBus;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    VirtualScreens::Delegate mDelegate;
    ScreenWish mWish;
    KWinChange mWanted;             ///< that KWin was not asked for yet
    std::vector<KWinOutput> mUsers; ///< the other outputs, before ours came
    Duration mArrangedBy{0};        ///< KWin itself; what comes later is the user's wish
    int mTries = 0;                 ///< to undo that
    std::optional<ScreenGeometry> mTold;
    bool mHasEnded = false;
    WaylandConnection mConnection;
    KWinOutputs mOutputs;
    ProxyPointer<zkde_screencast_unstable_v1> mMaker;
    KWinInput mInput;
    ShownScreen mScreen;
    std::unique_ptr<KWinStream> mStream; ///< that is shown
    std::unique_ptr<KWinStream> mNext;   ///< of another size
    int mNumber = 0;                     ///< of the stream that was made last
    std::string mLeaving;                ///< name of the one that was shown before
    std::shared_ptr<WindowMove> mMove;
};

} // namespace farview
