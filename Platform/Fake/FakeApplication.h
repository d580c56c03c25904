#pragma once

#include "Platform/Workspace.h"

#include <vector>

namespace farview
{

/// An application that remembers how it was brought to the front.
class FakeApplication final : public Application
{
public:
    bool activateWithOptions(unsigned options) override
    {
        mActivations.push_back(options);
        return true;
    }

    const std::vector<unsigned>& activations() const { return mActivations; }

private:
    std::vector<unsigned> mActivations;
};

} // namespace farview
