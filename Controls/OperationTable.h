#pragma once

#include "Platform/Types/Notification.h"
#include "Platform/Types/Object.h"
#include "Platform/Types/Selector.h"

#include <algorithm>
#include <span>

namespace farview
{

/// One operation of a class that can be called by name.
template <typename Class> struct Operation {
    Selector selector;
    void (*call)(Class& receiver, Object* argument);
};

/// A row for an action: a method that takes its sender.
template <auto method, typename Class> constexpr Operation<Class> action(std::string_view name)
{
    return {Selector{name}, [](Class& receiver, Object* sender) { (receiver.*method)(sender); }};
}

/// A row for an observer: a method that takes the notification. Anything else is ignored.
template <auto method, typename Class> constexpr Operation<Class> observer(std::string_view name)
{
    return {Selector{name}, [](Class& receiver, Object* argument) {
                if (const auto* notification = dynamic_cast<const Notification*>(argument))
                    (receiver.*method)(*notification);
            }};
}

/// The operation of that name; null when the table has none.
template <typename Class>
const Operation<Class>* findOperation(std::span<const Operation<Class>> table, Selector selector)
{
    const auto found = std::find_if(table.begin(), table.end(), [&](const Operation<Class>& each) {
        return each.selector == selector;
    });
    return found == table.end() ? nullptr : &*found;
}

} // namespace farview
