#pragma once

#include <string_view>

namespace farview
{

enum class LogLevel { debug, info, warning, error };

/// The process's log. Foreign text is made printable by the body, so callers pass it as it came.
class Log
{
public:
    virtual ~Log() = default;
    virtual void write(LogLevel level, std::string_view message) = 0;
};

} // namespace farview
