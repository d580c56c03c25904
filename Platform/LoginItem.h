#pragma once

#include <string>
#include <vector>

namespace farview
{

/// The start of the system's programs when the user logs in.
class LoginItem
{
public:
    /// The absolute path of a program, and its arguments.
    using Command = std::vector<std::string>;

    virtual ~LoginItem() = default;

    /// As the desktop sees it now: the user may have switched it off there.
    virtual bool isEnabled() = 0;
    /// From the next login on that command is run; it replaces the one before. False on failure.
    virtual bool enable(const Command& command) = 0;
    /// True when nothing is run any more, also when nothing was.
    virtual bool disable() = 0;
};

} // namespace farview
