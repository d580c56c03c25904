#pragma once

#include <memory>

namespace farview
{

/// Whether two weak references name the same object, also once that object is gone.
template <typename Left, typename Right>
bool isSameObject(const std::weak_ptr<Left>& left, const std::weak_ptr<Right>& right)
{
    return !left.owner_before(right) && !right.owner_before(left);
}

} // namespace farview
