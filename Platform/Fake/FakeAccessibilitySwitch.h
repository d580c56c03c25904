#pragma once

#include "Platform/AccessibilitySwitch.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace farview
{

/// A switch that a test scripts. What it has to tell waits until `deliver`.
class FakeAccessibilitySwitch final : public AccessibilitySwitch
{
public:
    Subscription observe(Observer observer) override
    {
        const auto shared = std::make_shared<Observer>(std::move(observer));
        mObserver = shared;
        mIsNews = true;
        return Subscription([this, weak = std::weak_ptr(shared)] {
            if (mObserver && mObserver == weak.lock())
                mObserver.reset();
        });
    }
    void set(bool on, Done done) override
    {
        mRequests.push_back(on);
        mWaiting.push_back({on, std::move(done)});
    }

    /// Somebody else, or the desktop, changes what holds.
    void setState(State state)
    {
        mIsNews = mIsNews || state != mState;
        mState = state;
    }
    const State& state() const { return mState; }
    /// What every further `set` ends with; anything but `none` leaves the switch as it is.
    void setProblem(Problem problem) { mProblem = problem; }
    bool isObserved() const { return mObserver != nullptr; }
    /// What was asked for, in order.
    const std::vector<bool>& requests() const { return mRequests; }

    /// Tells everything that is due.
    void deliver()
    {
        tell();
        for (auto& request : std::exchange(mWaiting, {})) {
            if (mProblem == Problem::none)
                setState({request.on, Problem::none, mState.lifetime});
            tell();
            request.done(mProblem);
        }
    }

private:
    struct Request {
        bool on;
        Done done;
    };

    void tell()
    {
        const auto observer = mObserver;
        if (std::exchange(mIsNews, false) && observer)
            (*observer)(mState);
    }

    std::shared_ptr<Observer> mObserver;
    std::vector<Request> mWaiting;
    std::vector<bool> mRequests;
    State mState;
    Problem mProblem = Problem::none;
    bool mIsNews = false;
};

} // namespace farview
