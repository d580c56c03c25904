#include "Applications/Update/UpdateArguments.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using Wish = UpdateArguments::Wish;

TEST(UpdateArguments, AreRead)
{
    const auto arguments = readUpdateArguments({"--bundle", "B", "--host", "H"});
    EXPECT_EQ(arguments.wish, Wish::update);
    EXPECT_EQ(arguments.bundle, "B");
    EXPECT_EQ(arguments.host, "H");
    EXPECT_FALSE(arguments.onlyChecks);
    EXPECT_EQ(arguments.patience, std::chrono::seconds(30));
    const auto more =
        readUpdateArguments({"--check-only", "--patience", "5", "--host", "H", "--bundle", "B"});
    EXPECT_TRUE(more.onlyChecks);
    EXPECT_EQ(more.patience, std::chrono::seconds(5));
    EXPECT_EQ(readUpdateArguments({"--help"}).wish, Wish::help);
    EXPECT_EQ(readUpdateArguments({"-v"}).wish, Wish::version);
}

TEST(UpdateArguments, MistakesAreSaidInPrintableWords)
{
    const std::vector<std::vector<std::string>> mistakes = {
        {},
        {"--bundle", "B"},
        {"--host", "H"},
        {"--bundle", "", "--host", "H"},
        {"--bundle"},
        {"--bundle", "B", "--host", "H", "--patience"},
        {"--bundle", "B", "--host", "H", "--patience", "0"},
        {"--bundle", "B", "--host", "H", "--patience", "601"},
        {"--bundle", "B", "--host", "H", "--patience", "5s"},
        {"--bundle", "B", "--host", "H", "\x1B[2J"},
    };
    for (const auto& mistake : mistakes) {
        const auto arguments = readUpdateArguments(mistake);
        EXPECT_EQ(arguments.wish, Wish::none);
        EXPECT_FALSE(arguments.mistake.empty());
        EXPECT_EQ(arguments.mistake.find('\x1B'), std::string::npos);
    }
}

} // namespace
} // namespace farview
