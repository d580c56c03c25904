#pragma once

#include "Controls/Alert.h"

#include <memory>
#include <utility>
#include <vector>

/// Shows nothing, keeps what it was asked to show, and answers when a test does.
class FakeAlerts final : public farview::AlertPresenter
{
public:
    farview::Subscription beginSheet(const farview::Alert& alert,
                                     const std::shared_ptr<farview::View>& view,
                                     DidEnd didEnd) override
    {
        shown.push_back(alert);
        shownOn = view;
        mDidEnd = std::make_shared<DidEnd>(std::move(didEnd));
        const std::weak_ptr<DidEnd> thisOne = mDidEnd;
        return farview::Subscription([this, thisOne] {
            if (mDidEnd && mDidEnd == thisOne.lock())
                mDidEnd.reset();
        });
    }

    bool isUp() const { return mDidEnd != nullptr; }
    void answer(int returnCode)
    {
        if (const auto didEnd = std::exchange(mDidEnd, nullptr))
            (*didEnd)(returnCode);
    }

    std::vector<farview::Alert> shown;
    std::shared_ptr<farview::View> shownOn;

private:
    std::shared_ptr<DidEnd> mDidEnd;
};
