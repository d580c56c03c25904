#include "Platform/Desktop/Screens/Wlroots/WlrootsVirtualScreens.h"

#include "Platform/Desktop/Screens/Wlroots/WlrootsMonitor.h"

#include <utility>

namespace farview
{

WlrootsVirtualScreens::~WlrootsVirtualScreens() = default;

/// A compositor that has ended may have been started again.
std::shared_ptr<WlrootsSession> WlrootsVirtualScreens::session()
{
    if (!mSession || mSession->hasEnded()) {
        mSession = std::make_shared<WlrootsSession>(mLoop);
        mChanges = mSession->observe([this] { answer(); });
    }
    return mSession;
}

void WlrootsVirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    mQuestions.push_back({std::move(target), std::move(then)});
    if (session()->availability())
        answer();
}

void WlrootsVirtualScreens::answer()
{
    if (!mSession->availability())
        return;
    const auto availability = *mSession->availability();
    for (const auto& question : std::exchange(mQuestions, {})) {
        if (const auto target = question.target.lock())
            question.then(availability);
    }
}

std::unique_ptr<VirtualScreen> WlrootsVirtualScreens::open(const ScreenWish& wish,
                                                           Delegate delegate)
{
    return std::make_unique<WlrootsMonitor>(mLoop, session(), wish, std::move(delegate));
}

} // namespace farview
