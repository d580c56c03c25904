#pragma once

#include "Platform/Accessibility.h"

namespace farview
{

class FakeAccessibility final : public Accessibility
{
public:
    bool isEnabled() const override { return mEnabled; }
    void setEnabled(bool enabled) { mEnabled = enabled; }

private:
    bool mEnabled = false;
};

} // namespace farview
