#pragma once

#include <string>
#include <string_view>

namespace farview
{

/// Unicode case of UTF-8 text.
class Text
{
public:
    virtual ~Text() = default;
    virtual std::string lowercase(std::string_view text) const = 0;
    virtual std::string uppercase(std::string_view text) const = 0;
};

} // namespace farview
