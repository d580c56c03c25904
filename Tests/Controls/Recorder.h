#pragma once

#include "Controls/Control.h"

#include <functional>
#include <string>
#include <vector>

/// A target that answers "act:" and remembers who called.
class Recorder : public farview::Responder
{
public:
    static constexpr farview::Selector act{"act:"};

    bool respondsTo(farview::Selector selector) const override
    {
        return answers && selector == act;
    }
    bool perform(farview::Selector selector, farview::Object* sender) override
    {
        if (!respondsTo(selector))
            return false;
        senders.push_back(sender);
        if (whenCalled)
            whenCalled();
        return true;
    }

    bool answers = true;
    std::vector<farview::Object*> senders;
    std::function<void()> whenCalled;
};

/// Counts what a view tells its observers.
class ChangeCounter
{
public:
    explicit ChangeCounter(farview::View& view)
        : mSubscription(view.observe([this](farview::Change change) { changes.push_back(change); }))
    {
    }
    std::size_t count() const { return changes.size(); }

    std::vector<farview::Change> changes;

private:
    farview::Subscription mSubscription;
};
