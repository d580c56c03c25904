#pragma once

namespace farview
{

/// Whether this desktop lets a program move the windows of others.
class Accessibility
{
public:
    virtual ~Accessibility() = default;
    virtual bool isEnabled() const = 0;
};

} // namespace farview
