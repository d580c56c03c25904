#pragma once

#include "Platform/Firewall.h"

namespace farview
{

/// The firewall that a test says.
class FakeFirewall final : public Firewall
{
public:
    FirewallState state() override { return mState; }
    void setState(const FirewallState& state) { mState = state; }

private:
    FirewallState mState;
};

} // namespace farview
