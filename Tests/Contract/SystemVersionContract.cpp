#include "Platform/Fake/FakeSystemVersion.h"
#include "Platform/Posix/PosixSystemVersion.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

template <typename Body> class SystemVersionContract : public testing::Test
{
protected:
    Body mBody;
};

using Bodies = testing::Types<FakeSystemVersion, PosixSystemVersion>;
TYPED_TEST_SUITE(SystemVersionContract, Bodies);

TYPED_TEST(SystemVersionContract, AnswersEveryQuestion)
{
    for (const auto query : {SystemVersionQuery::packed, SystemVersionQuery::major,
                             SystemVersionQuery::minor, SystemVersionQuery::bugFix})
        EXPECT_TRUE(this->mBody.gestalt(query));
}

TYPED_TEST(SystemVersionContract, IsAtLeastTenNine)
{
    EXPECT_EQ(this->mBody.gestalt(SystemVersionQuery::major), 10);
    EXPECT_GE(this->mBody.gestalt(SystemVersionQuery::minor), 9);
}

TYPED_TEST(SystemVersionContract, ThePackedFormIsTheSameVersionInDecimalDigits)
{
    const int packed = this->mBody.gestalt(SystemVersionQuery::packed).value_or(0);
    const int major = (packed >> 12 & 15) * 10 + (packed >> 8 & 15);
    EXPECT_EQ(major, this->mBody.gestalt(SystemVersionQuery::major));
    EXPECT_EQ(packed >> 4 & 15, std::min(9, *this->mBody.gestalt(SystemVersionQuery::minor)));
    EXPECT_EQ(packed & 15, std::min(9, *this->mBody.gestalt(SystemVersionQuery::bugFix)));
}

} // namespace
} // namespace farview
