#pragma once

#include <cstdint>
#include <optional>

namespace farview
{

/// The four questions that can be asked about the platform's level.
enum class SystemVersionQuery {
    packed, ///< 'sysv': binary-coded decimal 0xMMmb
    major,  ///< 'sys1'
    minor,  ///< 'sys2'
    bugFix, ///< 'sys3'
};

/// The platform level that this port provides.
class SystemVersion
{
public:
    virtual ~SystemVersion() = default;
    /// Nothing when the platform does not answer.
    virtual std::optional<std::int32_t> gestalt(SystemVersionQuery query) = 0;
};

} // namespace farview
