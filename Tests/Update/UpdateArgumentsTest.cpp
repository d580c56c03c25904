#include "Applications/Update/UpdateArguments.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

UpdateArguments read(const std::vector<std::string>& arguments)
{
    QStringList words(u"farview-update"_qs);
    for (const auto& argument : arguments)
        words += QString::fromStdString(argument);
    return readUpdateArguments(words);
}

TEST(UpdateArguments, AreRead)
{
    const auto arguments = read({"--bundle", "B", "--host", "H"});
    EXPECT_FALSE(arguments.answer);
    EXPECT_EQ(arguments.bundle, "B");
    EXPECT_EQ(arguments.host, "H");
    EXPECT_FALSE(arguments.onlyChecks);
    EXPECT_EQ(arguments.patience, std::chrono::seconds(30));
    const auto more = read({"--check-only", "--patience", "5", "--host", "H", "--bundle", "B"});
    EXPECT_TRUE(more.onlyChecks);
    EXPECT_EQ(more.patience, std::chrono::seconds(5));
}

TEST(UpdateArguments, MistakesAreRefused)
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
        const auto arguments = read(mistake);
        ASSERT_TRUE(arguments.answer);
        EXPECT_EQ(arguments.answer->status, CommandLine::wrongUse);
    }
}

} // namespace
} // namespace farview
