#pragma once

#include "Platform/Accessibility.h"

namespace farview
{

class FakeAccessibility final : public Accessibility
{
public:
    void askWhetherEnabled(std::weak_ptr<void> /*asker*/,
                           std::function<void(bool isEnabled)> answer) override
    {
        answer(mEnabled);
    }
    void setEnabled(bool enabled) { mEnabled = enabled; }

private:
    bool mEnabled = false;
};

} // namespace farview
