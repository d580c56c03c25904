#include "Platform/Desktop/Screens/KWin/KWinVirtualScreens.h"

#include "Platform/Desktop/Screens/KWin/KWinMonitor.h"

#include <utility>

namespace farview
{
namespace
{

constexpr std::uint32_t fingersOfAMonitor = 16;

/// One question for what is possible. Deletes itself after the answer.
class Question : public QObject
{
public:
    Question(SessionBus& parent, std::weak_ptr<void> target, VirtualScreens::Answer then)
        : QObject(&parent), mTarget(std::move(target)), mThen(std::move(then)),
          mConnection({.ready = [this] { answer(obstacleAt(mConnection)); },
                       .lost = [this] { answer(ScreenObstacle::noDesktop); }})
    {
    }

private:
    void answer(std::optional<ScreenObstacle> obstacle)
    {
        deleteLater();
        const auto then = std::exchange(mThen, nullptr);
        const auto target = mTarget.lock();
        if (target && then && obstacle)
            then({std::nullopt, *obstacle});
        else if (target && then)
            then({ScreenWay::plasma, {}});
    }

    std::weak_ptr<void> mTarget;
    VirtualScreens::Answer mThen;
    WaylandConnection mConnection;
};

} // namespace

void KWinVirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    new Question(mBus, std::move(target), std::move(then));
}

std::unique_ptr<VirtualScreen> KWinVirtualScreens::open(const ScreenWish& wish, Delegate delegate)
{
    const auto finger = std::exchange(mNextFinger, mNextFinger + fingersOfAMonitor);
    return std::make_unique<KWinMonitor>(mLoop, mBus, wish, std::move(delegate), finger);
}

} // namespace farview
