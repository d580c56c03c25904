#include "Tests/Layout/SourceTree.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>

namespace
{

/// "Suite.Name" of every test there is.
std::set<std::string> namesOfTests()
{
    const std::regex definition(R"(TEST(?:_F|_P)?\((\w+),\s*(\w+)\))");
    std::set<std::string> names;
    for (const auto& file : readSources({"Tests"})) {
        std::string all;
        for (const auto& line : file.lines)
            all += line + "\n";
        for (std::sregex_iterator each(all.begin(), all.end(), definition), end; each != end;
             ++each)
            names.insert((*each)[1].str() + "." + (*each)[2].str());
    }
    return names;
}

/// The tests that a page names; a "*" at the end stands for any rest.
std::vector<std::string> namesOn(const std::string& name)
{
    std::ifstream page(std::string(FARVIEW_SOURCE_DIR) + "/docs/" + name);
    std::ostringstream all;
    all << page.rdbuf();
    const std::string text = all.str();
    const std::regex test(R"(`(\w+\.[A-Z]\w*\*?|\w+\.\*)`)");
    std::vector<std::string> names;
    for (std::sregex_iterator each(text.begin(), text.end(), test), end; each != end; ++each)
        names.push_back((*each)[1].str());
    return names;
}

bool exists(const std::set<std::string>& tests, const std::string& name)
{
    if (name.back() != '*')
        return tests.contains(name);
    const std::string beginning = name.substr(0, name.size() - 1);
    const auto found = tests.lower_bound(beginning);
    return found != tests.end() && found->starts_with(beginning);
}

TEST(FaultsPage, NamesTestsThatExist)
{
    const auto tests = namesOfTests();
    for (const auto& [page, fewest] : {std::pair("faults.md", 80), std::pair("security.md", 30)}) {
        const auto names = namesOn(page);
        EXPECT_GT(names.size(), fewest) << page << " is not read as it is written";
        for (const auto& name : names)
            EXPECT_TRUE(exists(tests, name)) << page << ": " << name;
    }
}

} // namespace
