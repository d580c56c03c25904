#pragma once

#include <optional>

namespace farview
{

/// What is known when somebody may look for updates unasked.
struct UpdateScheduleInputs {
    bool isWanted = false;        ///< the user's option
    bool wasOptionShown = false;  ///< at an earlier showing: the user could have said no
    std::optional<double> last{}; ///< the last look, in seconds since 1970, however it ended
    double now = 0;
};

/// Whether to look now: when that is wanted, and the last look is a day ago. A last look in the
/// future tells of a clock that went back, and holds nothing up.
bool isUpdateCheckDue(const UpdateScheduleInputs& inputs);

/// When to decide anew, in seconds from now; nothing when only a changed option can change the
/// answer. Never later than in an hour and two minutes: the clock that waits stands still while the
/// computer sleeps. `random`, from 0 to 1, keeps many computers from looking at the same moment.
std::optional<double> secondsToNextUpdateDecision(const UpdateScheduleInputs& inputs,
                                                  double random);

} // namespace farview
