#pragma once

#include "Platform/Workspace.h"

#include <vector>

namespace farview
{

/// An application that remembers how it was brought to the front, and how often it was to
/// start anew.
class FakeApplication final : public Application
{
public:
    bool activateWithOptions(unsigned options) override
    {
        mActivations.push_back(options);
        return true;
    }

    bool reopen() override
    {
        ++mReopenings;
        return true;
    }

    const std::vector<unsigned>& activations() const { return mActivations; }
    int reopenings() const { return mReopenings; }

private:
    std::vector<unsigned> mActivations;
    int mReopenings = 0;
};

} // namespace farview
