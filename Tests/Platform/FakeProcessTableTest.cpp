#include "Platform/Fake/FakeProcessTable.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <vector>

using farview::FakeProcessTable;
using farview::ProcessRecord;

namespace
{

TEST(FakeProcessTable, TellsSizeThenContents)
{
    FakeProcessTable table;
    table.add(7, "ScreenCapture");
    table.add(9, "a-name-longer-than-sixteen");
    std::size_t count = 0;
    ASSERT_EQ(table.size(count), 0);
    ASSERT_EQ(count, 2U);
    std::vector<ProcessRecord> records(count);
    ASSERT_EQ(table.contents(records, count), 0);
    EXPECT_EQ(records[0].pid, 7);
    EXPECT_STREQ(records[0].shortName.data(), "ScreenCapture");
    EXPECT_EQ(std::string(records[1].shortName.data(), 16), "a-name-longer-th");
}

TEST(FakeProcessTable, ATableThatOutgrewItsBufferIsNotRead)
{
    FakeProcessTable table;
    table.add(7, "one");
    std::vector<ProcessRecord> records(1);
    std::size_t count = 0;
    table.setBeforeContents([&] { table.add(8, "two"); });
    EXPECT_EQ(table.contents(records, count), ENOMEM);
    table.remove(8);
    EXPECT_EQ(table.contents(records, count), 0);
}

TEST(FakeProcessTable, FailsAsScripted)
{
    FakeProcessTable table;
    std::size_t count = 0;
    table.setSizeError(EPERM);
    EXPECT_EQ(table.size(count), EPERM);
    table.setContentsErrors({EIO});
    EXPECT_EQ(table.contents({}, count), EIO);
    EXPECT_EQ(table.contents({}, count), 0);
}

} // namespace
