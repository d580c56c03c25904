#pragma once

#include "Platform/RunLoop.h"
#include "Platform/Types/Subscription.h"
#include "Platform/VirtualScreens.h"

namespace farview
{

class WlrootsSession;

/// Monitors of a sway or Hyprland session, which make outputs on request. Main thread only; the
/// loop must live longer.
class WlrootsVirtualScreens final : public VirtualScreens
{
public:
    explicit WlrootsVirtualScreens(RunLoop& loop) : mLoop(loop) {}
    ~WlrootsVirtualScreens() override;

    void availability(std::weak_ptr<void> target, Answer then) override;
    std::unique_ptr<VirtualScreen> open(const ScreenWish& wish, Delegate delegate) override;

private:
    struct Question {
        std::weak_ptr<void> target;
        Answer then;
    };

    std::shared_ptr<WlrootsSession> session();
    void answer();

    RunLoop& mLoop;
    std::shared_ptr<WlrootsSession> mSession; ///< from the first question or monitor on
    Subscription mChanges;
    std::vector<Question> mQuestions;
};

} // namespace farview
