#pragma once

#include "Platform/Log.h"

#include <algorithm>
#include <string>
#include <vector>

namespace farview
{

/// Keeps every line.
class FakeLog final : public Log
{
public:
    struct Line {
        LogLevel level;
        std::string message;

        bool operator==(const Line&) const = default;
    };

    void write(LogLevel level, std::string_view message) override
    {
        mLines.push_back({level, std::string(message)});
    }

    const std::vector<Line>& lines() const { return mLines; }
    /// Whether any line contains that text.
    bool contains(std::string_view text) const
    {
        return std::any_of(mLines.begin(), mLines.end(), [&](const Line& line) {
            return line.message.find(text) != std::string::npos;
        });
    }

private:
    std::vector<Line> mLines;
};

} // namespace farview
