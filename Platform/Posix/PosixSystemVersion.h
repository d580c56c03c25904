#pragma once

#include "Platform/SystemVersion.h"

namespace farview
{

/// The level of the platform interfaces that this port provides, whatever kernel and desktop it
/// runs on: 10.9.0. Programs compare it with the level a feature needs, and every feature that
/// needs at most this level works here, or says itself why it cannot.
class PosixSystemVersion final : public SystemVersion
{
public:
    std::optional<std::int32_t> gestalt(SystemVersionQuery query) override;
};

} // namespace farview
