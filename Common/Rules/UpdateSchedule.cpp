#include "Common/Rules/UpdateSchedule.h"

#include <algorithm>

namespace farview
{
namespace
{

constexpr double hour = 60 * 60;
constexpr double day = 24 * hour;
constexpr double shortestPause = 10;
constexpr double longestPause = 2 * 60;

double secondsUntilDue(const UpdateScheduleInputs& inputs)
{
    if (!inputs.last || *inputs.last > inputs.now)
        return 0;
    return std::max(0.0, *inputs.last + day - inputs.now);
}

} // namespace

bool isUpdateCheckDue(const UpdateScheduleInputs& inputs)
{
    return inputs.isWanted && inputs.wasOptionShown && secondsUntilDue(inputs) == 0;
}

std::optional<double> secondsToNextUpdateDecision(const UpdateScheduleInputs& inputs, double random)
{
    if (!inputs.isWanted || !inputs.wasOptionShown)
        return std::nullopt;
    const double spread = shortestPause + (longestPause - shortestPause) * random;
    return std::min(secondsUntilDue(inputs), hour) + spread;
}

} // namespace farview
