#pragma once

namespace farview
{

/// How a changed property gets from its old value to its new one.
struct Animation {
    enum class Pace { easeInEaseOut };

    Pace pace = Pace::easeInEaseOut;

    bool operator==(const Animation&) const = default;
};

} // namespace farview
