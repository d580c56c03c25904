#include "Common/Rules/StatusIcon.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(StatusIcon, TellsTheStateAtAGlance)
{
    const bool driver = true;
    const bool connected = true;
    const bool failed = true;
    EXPECT_EQ(statusIcon({driver, 0, false, false}), StatusIcon::off);
    EXPECT_EQ(statusIcon({driver, 1, false, false}), StatusIcon::on);
    EXPECT_EQ(statusIcon({driver, 1, connected, false}), StatusIcon::connected);
    EXPECT_EQ(statusIcon({driver, 1, false, failed}), StatusIcon::trouble);
    EXPECT_EQ(statusIcon({driver, 2, false, false}), StatusIcon::trouble);
}

TEST(StatusIcon, AMissingDriverIsTroubleWhateverElseHolds)
{
    for (const long state : {0, 1, 2})
        EXPECT_EQ(statusIcon({false, state, true, false}), StatusIcon::trouble);
}

TEST(StatusIcon, TroubleInTheSettingsOutweighsAConnection)
{
    EXPECT_EQ(statusIcon({true, 2, true, false}), StatusIcon::trouble);
}

TEST(StatusIcon, AQuestionOutweighsWhateverElseHolds)
{
    for (const bool driver : {false, true}) {
        for (const long state : {0, 1, 2})
            EXPECT_EQ(statusIcon({driver, state, true, true, true}), StatusIcon::question);
    }
}

TEST(StatusIcon, AnEarlierFailureDoesNotOutweighAConnectionOrBeingOff)
{
    EXPECT_EQ(statusIcon({true, 1, true, true}), StatusIcon::connected);
    EXPECT_EQ(statusIcon({true, 0, false, true}), StatusIcon::off);
}

} // namespace
} // namespace farview
