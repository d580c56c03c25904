#pragma once

#include "Platform/Types/NetworkKind.h"

#include <functional>
#include <memory>

namespace farview
{

/// What kind of network this computer is on.
class NetworkCondition
{
public:
    using Answer = std::function<void(NetworkKind)>;

    virtual ~NetworkCondition() = default;

    /// Finds out, without waiting for anything and without starting anything. The answer comes
    /// once, within some seconds: later, or before the operation returned; never when `target` is
    /// gone.
    virtual void ask(std::weak_ptr<void> target, Answer then) = 0;
};

} // namespace farview
