#include "Applications/Update/UpdateFailure.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace farview
{
namespace
{

TEST(UpdateFailure, ThePageListsTheReasonsThatThereAre)
{
    std::set<std::string> words;
    for (const auto& each : updateProblemWords)
        words.emplace(each.word);
    std::ifstream page(FARVIEW_SOURCE_DIR "/docs/updates.md");
    const std::regex row("^\\| `([a-z-]+)` \\|.*");
    std::set<std::string> listed;
    for (std::string line; std::getline(page, line);) {
        std::smatch match;
        if (std::regex_match(line, match, row))
            listed.insert(match[1]);
    }
    EXPECT_EQ(listed, words);
}

TEST(UpdateFailure, AFullDiskIsAReasonOfItsOwn)
{
    EXPECT_EQ(writeFailure(ENOSPC, "x").problem, UpdateProblem::noSpace);
    EXPECT_EQ(writeFailure(EDQUOT, "x").problem, UpdateProblem::noSpace);
    EXPECT_EQ(writeFailure(EACCES, "x").problem, UpdateProblem::write);
}

} // namespace
} // namespace farview
