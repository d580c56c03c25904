#include "Platform/Desktop/Updates/UpdateReport.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using farview::readUpdateReport;
using farview::UpdateProblem;
using Stage = farview::UpdateStatus::Stage;

std::optional<farview::UpdateReport> read(const std::string& line)
{
    return readUpdateReport(QByteArray::fromStdString(line));
}

TEST(UpdateReport, IsReadWithItsParts)
{
    const auto found = read(R"({"event":"found","version":"1.1","notes":"One\nTwo","length":123})");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->status.stage, Stage::found);
    EXPECT_EQ(found->status.version, "1.1");
    EXPECT_EQ(found->status.notes, "One\nTwo");
    EXPECT_EQ(found->status.length, 123);
    const auto progress = read(R"({"event":"downloading","received":0,"length":123})");
    ASSERT_TRUE(progress);
    EXPECT_EQ(progress->status.received, 0);
    const auto failed = read(R"({"event":"failed","reason":"no-space","detail":"ENOSPC"})");
    ASSERT_TRUE(failed);
    EXPECT_EQ(failed->status.problem, UpdateProblem::noSpace);
    EXPECT_EQ(failed->detail, "ENOSPC");
    for (const char* line :
         {R"({"event":"checking"})", R"({"event":"verifying","more":[1,{}]})",
          R"({"event":"installing"})", R"({"event":"cancelled"})",
          R"({"event":"current","version":"1.0","offered":"1.0"})",
          R"({"event":"ready","version":"1.1"})", R"({"event":"installed","version":"1.1"})"})
        EXPECT_TRUE(read(line)) << line;
}

TEST(UpdateReport, AnUnknownReasonIsSomethingElse)
{
    EXPECT_EQ(read(R"({"event":"failed","reason":"moon"})")->status.problem,
              UpdateProblem::internal);
    EXPECT_EQ(read(R"({"event":"failed"})")->status.problem, UpdateProblem::internal);
    EXPECT_EQ(read(R"({"event":"failed","reason":7})")->status.problem, UpdateProblem::internal);
}

TEST(UpdateReport, WhatIsNoneOrCannotBeIsAsIfItHadNotCome)
{
    const std::string longVersion(41, '1');
    for (const std::string& line : {
             std::string(),
             std::string("checking"),
             std::string("[]"),
             std::string("{}"),
             std::string("null"),
             std::string(R"({"event":"checking")"),
             std::string(R"({"event":7})"),
             std::string(R"({"event":"dancing"})"),
             std::string(R"({"event":"found","version":"1.1"})"),
             std::string(R"({"event":"found","version":"","length":1})"),
             std::string(R"({"event":"found","version":"<b>1</b>","length":1})"),
             std::string(R"({"event":"found","version":"1.1\n","length":1})"),
             R"({"event":"found","version":")" + longVersion + R"(","length":1})",
             std::string(R"({"event":"found","version":"1.1","length":0})"),
             std::string(R"({"event":"found","version":"1.1","length":-5})"),
             std::string(R"({"event":"found","version":"1.1","length":"5"})"),
             std::string(R"({"event":"found","version":"1.1","length":5000000000})"),
             std::string(R"({"event":"found","version":"1.1","length":1e300})"),
             std::string(R"({"event":"downloading","received":2,"length":1})"),
             std::string(R"({"event":"downloading","received":-1,"length":1})"),
             std::string(R"({"event":"downloading"})"),
             std::string(R"({"event":"ready"})"),
             std::string(R"({"event":"installed","version":["1.1"]})"),
             std::string("\xff\xfe{\"event\":\"checking\"}"),
             std::string(100'000, '['),
         })
        EXPECT_FALSE(read(line)) << line.substr(0, 80);
}

TEST(UpdateReport, LongNotesAndDetailsAreCut)
{
    const std::string text(60'000, 'n');
    const auto found =
        read(R"({"event":"found","version":"1.1","length":1,"notes":")" + text + "\"}");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->status.notes.size(), 16'000u);
    EXPECT_EQ(read(R"({"event":"failed","detail":")" + text + "\"}")->detail.size(), 400u);
}

} // namespace
