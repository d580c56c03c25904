#pragma once

#include "Platform/Desktop/Screens/Wayland/WaylandOutputs.h"
#include "Platform/Desktop/Screens/Wlroots/CompositorControl.h"
#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/RunLoop.h"
#include "Platform/Types/Observers.h"
#include "Platform/VirtualScreens.h"

#include <deque>
#include <set>

namespace farview
{

/// What all our monitors of one compositor share: connections to it, and its outputs. Outputs of a
/// Farview that has died are removed, or used again where the compositor keeps them. Main thread
/// only; the loop must live longer.
class WlrootsSession
{
public:
    explicit WlrootsSession(RunLoop& loop);
    /// Waits until sway has done what it was told, but not for one that stands still.
    ~WlrootsSession();
    WlrootsSession(const WlrootsSession&) = delete;
    WlrootsSession& operator=(const WlrootsSession&) = delete;

    /// What is possible, once that is known.
    const std::optional<ScreenAvailability>& availability() const { return mAvailability; }
    bool hasEnded() const { return mHasEnded; }
    /// Is told, on a later turn, when that is known, when the session has ended, and whenever
    /// outputs come, change or go.
    Subscription observe(std::function<void()> changed);

    /// Gives an output of ours that nobody else has, once there is one: its name, or nothing when
    /// the compositor refuses. One after the other: nothing says for whom an output is made.
    using Taker = std::function<void(const std::string& name)>;
    void take(std::weak_ptr<void> target, Taker then);
    /// Takes its windows back and removes it.
    void giveBack(const std::string& name);

    WaylandConnection& wayland() { return mWayland; }
    std::vector<WaylandOutput> outputs() const { return mOutputs.known(); }
    std::optional<WaylandOutput> find(const std::string& name) const;
    CompositorControl& control() { return *mControl; }
    /// Null where it is not sway.
    SwayConnection* sway() { return mSway.get(); }
    Observers<>& windowChanged() { return mWindowChanged; }

private:
    struct Request {
        std::weak_ptr<void> target;
        Taker then;
    };

    void useGlobals();
    void useVersion(const QJsonDocument& answer);
    void decide(std::optional<ScreenWay> way, ScreenObstacle obstacle);
    void lose(ScreenObstacle obstacle);
    void noticeOutputs();
    void tellSoon();
    bool mayUseWhatOthersLeft();
    std::vector<std::string> leftOver();
    void serveNext();
    void make();
    void give(const std::string& name);

    RunLoop& mLoop;
    std::shared_ptr<void> mLife = std::make_shared<int>();
    std::optional<ScreenAvailability> mAvailability;
    bool mHasEnded = false;
    bool mIsToTell = false;
    FileDescriptor mLock;
    std::set<std::string> mTaken; ///< outputs of ours that nobody else may have
    int mLeaving = 0;             ///< outputs that are being removed
    std::deque<Request> mRequests;
    std::shared_ptr<void> mMaking; ///< while an output is being made
    std::set<std::string> mBefore; ///< outputs that were there already
    Observers<> mChanged;
    Observers<> mWindowChanged;
    std::unique_ptr<SwayConnection> mSway;
    std::unique_ptr<CompositorControl> mControl;
    WaylandConnection mWayland;
    WaylandOutputs mOutputs;
};

} // namespace farview
