#pragma once

#include "Platform/Desktop/Screens/Mutter/DisplayConfig.h"
#include "Platform/RunLoop.h"
#include "Platform/VirtualScreens.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace farview
{

/// A monitor of ours in the layout, as its owner wants it. The functions begin nothing that ends
/// it.
struct MutterPart {
    ScreenWish wish;
    /// Where it is, or shall be; nothing: beside everything.
    std::optional<PixelPoint> corner;
    std::function<void()> mayBegin; ///< now Mutter may make it
    /// What has become of the wishes; whether Mutter showed something else just before.
    std::function<void(const ScreenGeometry&, bool wasElse)> stands;
    std::function<void(ScreenObstacle)> lost;   ///< it may have ended
    std::optional<MonitorId> id = std::nullopt; ///< once it is there
};

/// Where our monitors are among the user's. Whenever monitors come, go or change, Mutter arranges
/// all of them anew; the user's are put back where they were then, and ours beside them. One for
/// all our monitors, so that none undoes what another wants. Main thread only.
class MutterLayout : public std::enable_shared_from_this<MutterLayout>
{
public:
    MutterLayout(RunLoop& loop, SessionBus& bus);

    /// Its turn comes when those that were added before are there or have failed: a monitor does
    /// not say whose it is, but only one is new at a time. Lives until it is removed.
    void add(MutterPart& part);
    /// Its monitor has been or will be removed. The user's monitors get their places back: for some
    /// seconds, as long as the loop lives.
    void remove(MutterPart& part);
    /// What Mutter would refuse changes nothing.
    void setScale(MutterPart& part, double scale);
    void place(MutterPart& part, PixelPoint corner);

private:
    using Permission =
        std::function<bool(const PixelRect& area, const std::vector<PixelRect>& others)>;

    void useState(const DisplayState* state);
    void beginNext();
    void findOpening(const DisplayState& state);
    bool isSettled(const DisplayState& state) const;
    void follow(const DisplayState& state);
    void adopt(MutterPart& part);
    void apply();
    void applySoon();
    void expectWithout(const MonitorId& id);
    DisplayLayout wished() const;
    DisplayLayout arranged(const Permission& mayStay) const;
    DisplayLayout usersOf(DisplayLayout layout) const;
    std::vector<PixelRect> othersThan(const MutterPart& part) const;
    bool isResizing(const MutterPart& part) const;
    const MonitorMode* modeOf(const MutterPart& part) const;

    RunLoop& mLoop;
    SessionBus& mBus;
    std::vector<MutterPart*> mParts;     ///< in the order in which they came
    MutterPart* mOpening = nullptr;      ///< whose turn it is
    std::optional<DisplayState> mBefore; ///< without its monitor
    std::optional<DisplayState> mState;
    QList<MonitorId> mRemoved; ///< of ours, which Mutter may still show
    DisplayLayout mUsers;      ///< where the user wants the other monitors
    bool mHasReplaced = false; ///< a layout that Mutter made
    bool mHasWish = false;     ///< that waits for another to be granted
    LayoutJudge mJudge;
    DisplayConfig mDisplays;
};

} // namespace farview
