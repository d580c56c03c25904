#include "Platform/Posix/PosixSystemVersion.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(PosixSystemVersion, IsTenNineInBothForms)
{
    PosixSystemVersion version;
    EXPECT_EQ(version.gestalt(SystemVersionQuery::packed), 0x1090);
    EXPECT_EQ(version.gestalt(SystemVersionQuery::major), 10);
    EXPECT_EQ(version.gestalt(SystemVersionQuery::minor), 9);
    EXPECT_EQ(version.gestalt(SystemVersionQuery::bugFix), 0);
}

} // namespace
} // namespace farview
