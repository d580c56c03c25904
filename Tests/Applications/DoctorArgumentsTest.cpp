#include "Applications/Doctor/DoctorArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::HasSubstr;
using Wish = DoctorArguments::Wish;

namespace
{

TEST(DoctorArguments, ExamineWithoutAWord)
{
    const auto arguments = readDoctorArguments({});
    EXPECT_EQ(arguments.wish, Wish::examine);
    EXPECT_FALSE(arguments.asJSON);
}

TEST(DoctorArguments, AskForJSONHelpAndVersion)
{
    EXPECT_TRUE(readDoctorArguments({"--json"}).asJSON);
    EXPECT_EQ(readDoctorArguments({"--help"}).wish, Wish::help);
    EXPECT_EQ(readDoctorArguments({"--json", "-h"}).wish, Wish::help);
    EXPECT_EQ(readDoctorArguments({"--version"}).wish, Wish::version);
}

TEST(DoctorArguments, RefuseWhatTheyDoNotKnowInPrintableWords)
{
    const auto arguments = readDoctorArguments({"--json", "\x1b[2J"});
    EXPECT_EQ(arguments.wish, Wish::none);
    EXPECT_THAT(arguments.mistake, HasSubstr("\\x1B[2J"));
}

TEST(DoctorArguments, HelpNamesEveryExitStatus)
{
    for (const char* line : {"\n   0 ", "\n   1 ", "\n   2 ", "\n   3 "})
        EXPECT_THAT(std::string(doctorUsage), HasSubstr(line));
}

} // namespace
