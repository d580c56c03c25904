#include "Common/Rules/UpdateSchedule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace
{

using farview::isUpdateCheckDue;
using farview::secondsToNextUpdateDecision;
using farview::UpdateScheduleInputs;

constexpr double hour = 3600;
constexpr double day = 24 * hour;
constexpr double now = 1'800'000'000;

struct Row {
    const char* what;
    UpdateScheduleInputs inputs;
    bool isDue;
};

TEST(UpdateSchedule, SaysWhenALookIsDue)
{
    const std::vector<Row> rows = {
        {"never looked", {true, true, std::nullopt, now}, true},
        {"not wanted", {false, true, std::nullopt, now}, false},
        {"the user could not say no yet", {true, false, std::nullopt, now}, false},
        {"a moment ago", {true, true, now, now}, false},
        {"nearly a day ago", {true, true, now - day + 1, now}, false},
        {"a day ago", {true, true, now - day, now}, true},
        {"long ago, not wanted", {false, true, now - 9 * day, now}, false},
        {"long ago, not shown", {true, false, now - 9 * day, now}, false},
        {"a second in the future", {true, true, now + 1, now}, true},
        {"years in the future", {true, true, now + 900 * day, now}, true},
        {"no number", {true, true, std::nan(""), now}, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isUpdateCheckDue(row.inputs), row.isDue) << row.what;
}

TEST(UpdateSchedule, IsDecidedAnewSoonWhenDueAndEveryHourUntilThen)
{
    const UpdateScheduleInputs due{true, true, std::nullopt, now};
    EXPECT_EQ(secondsToNextUpdateDecision(due, 0), 10);
    EXPECT_EQ(secondsToNextUpdateDecision(due, 1), 120);
    const UpdateScheduleInputs early{true, true, now - hour, now};
    EXPECT_EQ(secondsToNextUpdateDecision(early, 0), hour + 10);
    const UpdateScheduleInputs late{true, true, now - day + 60, now};
    EXPECT_EQ(secondsToNextUpdateDecision(late, 0), 70);
    const UpdateScheduleInputs clockWentBack{true, true, now + 900 * day, now};
    EXPECT_EQ(secondsToNextUpdateDecision(clockWentBack, 0), 10);
}

TEST(UpdateSchedule, WakesNobodyWithoutNeed)
{
    EXPECT_EQ(secondsToNextUpdateDecision({false, true, std::nullopt, now}, 0), std::nullopt);
    EXPECT_EQ(secondsToNextUpdateDecision({true, false, std::nullopt, now}, 0), std::nullopt);
}

TEST(UpdateSchedule, TheNextDecisionFindsALookDueWhateverTheChance)
{
    for (double random = 0; random <= 1; random += 0.25) {
        UpdateScheduleInputs inputs{true, true, now - day + 100, now};
        inputs.now += *secondsToNextUpdateDecision(inputs, random);
        EXPECT_TRUE(isUpdateCheckDue(inputs)) << random;
    }
}

} // namespace
