#pragma once

#include "Platform/NetworkCondition.h"

#include <optional>
#include <utility>

namespace farview
{

/// On a network that costs nothing, unless a test says otherwise. Answers at once, or, when held,
/// as soon as a test lets it.
class FakeNetworkCondition final : public NetworkCondition
{
public:
    void ask(std::weak_ptr<void> target, Answer then) override
    {
        ++mQuestions;
        mTarget = std::move(target);
        mThen = std::move(then);
        if (!mIsHeld)
            answer();
    }

    void setKind(NetworkKind kind) { mKind = kind; }
    void hold() { mIsHeld = true; }
    /// Answers the latest question, once.
    void answer()
    {
        const auto kept = mTarget.lock();
        if (const auto then = std::exchange(mThen, nullptr); then && kept)
            then(mKind);
    }
    int questions() const { return mQuestions; }

private:
    NetworkKind mKind = NetworkKind::unmetered;
    bool mIsHeld = false;
    int mQuestions = 0;
    std::weak_ptr<void> mTarget;
    Answer mThen;
};

} // namespace farview
