#pragma once

namespace farview
{

/// Anything that is shared by identity: senders of actions, network services, notifications.
/// Held in `std::shared_ptr`; what compares by value overrides `isEqual`.
class Object
{
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    /// Equality as lists and menus understand it. Identity unless a class says otherwise.
    virtual bool isEqual(const Object& other) const { return this == &other; }
};

} // namespace farview
