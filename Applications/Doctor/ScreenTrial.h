#pragma once

#include "Applications/Doctor/Finding.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>

namespace farview
{

/// What came of trying a screen.
struct ScreenTrialFacts {
    /// Nothing when nobody said in time what is possible.
    std::optional<ScreenAvailability> availability{};
    std::optional<ScreenGeometry> geometry{}; ///< once it has appeared
    Duration appearedAfter{0};
    int frames = 0;
    Duration firstFrameAfter{0}; ///< since it appeared
    int differentFrames = 0;     ///< from the one before each
    bool isOneColour = true;     ///< all pixels of all frames
    bool isPointerInFrames = false;
    bool hasPointerImage = false;
    bool hasPointerPlace = false;
    InputAbilities input{};
    WindowKeeping windows = WindowKeeping::nobody;
    std::optional<ScreenObstacle> end{}; ///< it was not we who ended it
    bool isBrokenOff = false;            ///< nobody knows what would have come
};

Findings findingsAboutTrial(const ScreenTrialFacts& facts);

/// Adds a screen for five seconds, moves the pointer over it, and notes what arrives. Made with
/// `std::make_shared`; its end takes the screen away. Main thread only.
class ScreenTrial final : public VirtualScreenDelegate,
                          public std::enable_shared_from_this<ScreenTrial>
{
public:
    /// Both must live longer.
    ScreenTrial(RunLoop& loop, VirtualScreens& screens) : mLoop(loop), mScreens(screens) {}

    /// Begins, once. `ended` is called on a later turn, when the screen has been taken away.
    void start(std::function<void()> ended);
    /// Takes the screen away now.
    void breakOff();
    const ScreenTrialFacts& facts() const { return mFacts; }

    void didAppear(const ScreenGeometry& geometry) override;
    void didChange(const ScreenGeometry& geometry) override;
    void frameReady() override;
    void cursorChanged() override;
    void didEnd(ScreenObstacle reason) override;

private:
    void open(const ScreenAvailability& found);
    void stop();
    void stopAfter(Duration delay);
    void movePointer(int step);
    void use(const FrameView& frame);

    RunLoop& mLoop;
    VirtualScreens& mScreens;
    std::function<void()> mEnded;
    ScreenTrialFacts mFacts;
    Duration mSince{0};
    std::size_t mLastFrame = 0; ///< what tells it from others
    std::weak_ptr<Timer> mEnding;
    std::unique_ptr<VirtualScreen> mScreen;
};

} // namespace farview
