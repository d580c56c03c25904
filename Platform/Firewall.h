#pragma once

#include "Platform/Types/FirewallState.h"

namespace farview
{

/// The firewall of this computer, looked at and never changed.
class Firewall
{
public:
    virtual ~Firewall() = default;

    /// As it is now. Reads some small files; never asks for rights.
    virtual FirewallState state() = 0;
};

} // namespace farview
