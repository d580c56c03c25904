#pragma once

#include "Platform/Types/Subscription.h"

#include <functional>
#include <optional>

namespace farview
{

/// The desktop's own switch that lets assistive programs read and operate its windows.
class AccessibilitySwitch
{
public:
    /// How long a choice holds: until the session ends, or until it is changed.
    enum class Lifetime { session, kept };
    enum class Problem {
        none,
        noService, ///< nobody on this desktop offers the switch
        noAnswer,  ///< whoever offers it does not answer, or answers with an error
        notTaken,  ///< it was set without an error, and is as it was
    };
    struct State {
        /// Nothing while nobody tells; `problem` then says why.
        std::optional<bool> isOn;
        Problem problem = Problem::none;
        /// Nothing until it is known.
        std::optional<Lifetime> lifetime;

        bool operator==(const State&) const = default;
    };
    using Observer = std::function<void(const State&)>;
    using Done = std::function<void(Problem)>;

    virtual ~AccessibilitySwitch() = default;

    /// Tells on a later turn what holds, then whenever that changes. One observer at a time: a
    /// second one takes the place of the first.
    virtual Subscription observe(Observer observer) = 0;
    /// Sets the switch, in the desktop's lasting setting too where there is one. `done` is called
    /// once, on a later turn, after the observer was told; never after the switch's end.
    virtual void set(bool on, Done done) = 0;
};

} // namespace farview
