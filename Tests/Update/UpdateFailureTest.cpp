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

std::set<std::string> words()
{
    std::set<std::string> all;
    for (int reason = 0; reason <= static_cast<int>(UpdateReason::internal); ++reason)
        all.insert(wordFor(static_cast<UpdateReason>(reason)));
    return all;
}

TEST(UpdateFailure, EveryReasonHasAWordOfItsOwn)
{
    EXPECT_EQ(words().size(), static_cast<std::size_t>(UpdateReason::internal) + 1);
}

TEST(UpdateFailure, ThePageListsTheReasonsThatThereAre)
{
    std::ifstream page(FARVIEW_SOURCE_DIR "/docs/updates.md");
    const std::regex row("^\\| `([a-z-]+)` \\|.*");
    std::set<std::string> listed;
    for (std::string line; std::getline(page, line);) {
        std::smatch match;
        if (std::regex_match(line, match, row))
            listed.insert(match[1]);
    }
    EXPECT_EQ(listed, words());
}

TEST(UpdateFailure, AFullDiskIsAReasonOfItsOwn)
{
    EXPECT_EQ(writeFailure(ENOSPC, "x").reason, UpdateReason::noSpace);
    EXPECT_EQ(writeFailure(EDQUOT, "x").reason, UpdateReason::noSpace);
    EXPECT_EQ(writeFailure(EACCES, "x").reason, UpdateReason::write);
}

} // namespace
} // namespace farview
