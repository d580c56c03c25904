#pragma once

#include "Platform/LoginItem.h"

#include <optional>

namespace farview
{

/// Remembers the command.
class FakeLoginItem final : public LoginItem
{
public:
    bool isEnabled() override { return mCommand.has_value(); }
    bool enable(const Command& command) override
    {
        if (!mFails)
            mCommand = command;
        return !mFails;
    }
    bool disable() override
    {
        if (!mFails)
            mCommand.reset();
        return !mFails;
    }

    const std::optional<Command>& command() const { return mCommand; }
    /// While failing, nothing changes.
    void setFails(bool fails) { mFails = fails; }

private:
    std::optional<Command> mCommand;
    bool mFails = false;
};

} // namespace farview
