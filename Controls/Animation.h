#pragma once

namespace farview
{

/// How a changed property gets from its old value to its new one.
struct Animation {
    enum class Pace { easeInEaseOut };

    Pace pace = Pace::easeInEaseOut;

    /// How long it takes where nobody says otherwise, in seconds.
    static constexpr double standardTime = 0.25;

    bool operator==(const Animation&) const = default;
};

} // namespace farview
