#include "Tests/Posix/PreferencesFixture.h"

#include <chrono>
#include <map>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

std::string nestedArrays(int depth)
{
    std::string text = "<plist><dict><key>key</key>";
    for (int level = 0; level < depth; ++level)
        text += "<array>";
    return text;
}

std::map<std::string, std::string> brokenFiles()
{
    const auto good = listWith("key", "old");
    return {
        {"Empty", ""},
        {"Truncated", good.substr(0, good.size() - 20)},
        {"WrongRoot", "<plist version=\"1.0\"><array/></plist>"},
        {"NoPropertyList", "<html>old</html>"},
        {"HundredThousandLevels", nestedArrays(100000)},
        {"EntityBomb", "<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>"
                       "<plist><dict><key>key</key><string>&b;</string></dict></plist>"},
        {"NUL", good + std::string(1, '\0')},
        {"BrokenUTF8", listWith("key", "\xFF\xFE")},
        {"TenMegabytes", listWith("key", std::string(10u << 20, 'x'))},
        {"DuplicateKeys", "<plist><dict><key>a</key><true/><key>a</key><true/></dict></plist>"},
    };
}

class BrokenPreferencesTest : public PreferencesFixture,
                              public testing::WithParamInterface<std::string>
{
};

TEST_P(BrokenPreferencesTest, AreRefusedSetAsideWholeAndReplaced)
{
    const auto broken = brokenFiles().at(GetParam());
    writeFile(broken);
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(contentsOf(path()), broken);
    EXPECT_TRUE(store("new"));
    EXPECT_EQ(contentsOf(path()), listWith("key", "new"));
    EXPECT_EQ(contentsOf(path() + ".broken-1"), broken);
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList("new"));
}

INSTANTIATE_TEST_SUITE_P(Files, BrokenPreferencesTest,
                         testing::Values("Empty", "Truncated", "WrongRoot", "NoPropertyList",
                                         "HundredThousandLevels", "EntityBomb", "NUL", "BrokenUTF8",
                                         "TenMegabytes", "DuplicateKeys"),
                         [](const auto& info) { return info.param; });

class BrokenPreferences : public PreferencesFixture
{
};

TEST_F(BrokenPreferences, EarlierOnesSurviveBesideTheNewest)
{
    for (int number = 1; number <= 3; ++number) {
        writeFile("broken " + std::to_string(number));
        EXPECT_TRUE(store(number));
    }
    for (int number = 1; number <= 3; ++number)
        EXPECT_EQ(contentsOf(path() + ".broken-" + std::to_string(number)),
                  "broken " + std::to_string(number));
}

TEST_F(BrokenPreferences, AreLoggedOnceAndNotAtEachRead)
{
    writeFile("broken");
    for (int count = 0; count < 5; ++count)
        EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(mLog.lines().size(), 1u);
    EXPECT_TRUE(store(1));
    EXPECT_TRUE(mLog.contains(path() + ".broken-1"));
}

TEST_F(BrokenPreferences, ASetAsideFileBehindALinkLiesBesideItsTarget)
{
    const auto target = mFolder.write("elsewhere/real.plist", "broken");
    std::filesystem::create_directories(mFolder.path("config/farview"));
    std::filesystem::create_symlink(target, path());
    EXPECT_TRUE(store(1));
    EXPECT_EQ(contentsOf(target + ".broken-1"), "broken");
    EXPECT_TRUE(std::filesystem::is_symlink(path()));
}

} // namespace
} // namespace farview
