#include "Applications/Update/UpdateArguments.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

UpdateArguments read(const QStringList& arguments)
{
    return readUpdateArguments(QStringList{"farview-update"} + arguments);
}

TEST(UpdateArguments, AreRead)
{
    const auto arguments = read({"--bundle", "B", "--host", "H"});
    EXPECT_EQ(arguments.mistake, "");
    EXPECT_EQ(arguments.answer, "");
    EXPECT_EQ(arguments.bundle, "B");
    EXPECT_EQ(arguments.host, "H");
    EXPECT_FALSE(arguments.onlyChecks);
    EXPECT_EQ(arguments.patience, std::chrono::seconds(30));
    const auto more = read({"--check-only", "--patience", "5", "--host", "H", "--bundle", "B"});
    EXPECT_TRUE(more.onlyChecks);
    EXPECT_EQ(more.patience, std::chrono::seconds(5));
    EXPECT_NE(read({"--help"}).answer.find("--check-only"), std::string::npos);
    EXPECT_TRUE(read({"-v"}).answer.starts_with("farview-update "));
}

TEST(UpdateArguments, MistakesAreSaidInPrintableWords)
{
    const QStringList good{"--bundle", "B", "--host", "H"};
    const QStringList mistakes[] = {
        {},
        {"--bundle", "B"},
        {"--host", "H"},
        {"--bundle", "", "--host", "H"},
        {"--bundle"},
        good + QStringList{"--patience"},
        good + QStringList{"--patience", "0"},
        good + QStringList{"--patience", "601"},
        good + QStringList{"--patience", "5s"},
        good + QStringList{"\x1B[2J"},
        good + QStringList{"--\x1B[2J"},
    };
    for (const auto& mistake : mistakes) {
        const auto arguments = read(mistake);
        EXPECT_FALSE(arguments.mistake.empty());
        EXPECT_EQ(arguments.mistake.find('\x1B'), std::string::npos);
    }
}

} // namespace
} // namespace farview
