#pragma once

#include <functional>
#include <memory>

namespace farview
{

/// Whether this desktop lets a program move the windows of others.
class Accessibility
{
public:
    virtual ~Accessibility() = default;
    /// Calls `answer` once: before this returns where the answer is known, else on a later turn and
    /// only while `asker` lives. Main thread only.
    virtual void askWhetherEnabled(std::weak_ptr<void> asker,
                                   std::function<void(bool isEnabled)> answer) = 0;
};

} // namespace farview
