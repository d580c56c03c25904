#include "Common/Rules/HiDPITexts.h"

#include <gtest/gtest.h>

#include <set>

using farview::AuthorizationStatus;

namespace
{

TEST(HiDPITexts, SayWhatIsInForceAndWhatOKWillDo)
{
    EXPECT_NE(farview::hiDPIExplanation(true).find("are on. OK turns them off"), std::string::npos);
    EXPECT_NE(farview::hiDPIExplanation(false).find("are off. OK turns them on"),
              std::string::npos);
}

TEST(HiDPITexts, SayOfEachTroubleSomethingElseAndNothingWhenThereIsNone)
{
    std::set<std::string> texts;
    for (const auto status : {AuthorizationStatus::denied, AuthorizationStatus::internal,
                              AuthorizationStatus::interactionNotAllowed})
        texts.insert(farview::authorizationTrouble(status));
    EXPECT_EQ(texts.size(), 3u);
    EXPECT_FALSE(texts.contains(""));
    EXPECT_EQ(farview::authorizationTrouble(AuthorizationStatus::success), "");
}

TEST(HiDPITexts, HaveAPlaceForThePathThatIsToBlame)
{
    EXPECT_NE(std::string(farview::toolIsChangeableText).find("%@"), std::string::npos);
}

TEST(AuthorizationStatus, HasTheNumbersThatLogsShow)
{
    EXPECT_EQ(static_cast<int>(AuthorizationStatus::denied), -60005);
    EXPECT_EQ(static_cast<int>(AuthorizationStatus::canceled), -60006);
    EXPECT_EQ(static_cast<int>(AuthorizationStatus::interactionNotAllowed), -60007);
    EXPECT_EQ(static_cast<int>(AuthorizationStatus::internal), -60008);
    EXPECT_EQ(static_cast<int>(AuthorizationStatus::toolExecuteFailure), -60031);
}

} // namespace
