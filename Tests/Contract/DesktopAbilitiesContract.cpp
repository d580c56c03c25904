// The table of what works on which desktop, against desktops.

#include "Common/Rules/DesktopAbilities.h"
#include "Tests/Contract/ScreenScenes.h"
#include "Tests/Desktop/ScreenListener.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <regex>

namespace farview
{
namespace
{

/// The first number with dots in what a command prints.
std::string versionOf(const char* command)
{
    std::string text;
    FILE* const pipe = ::popen(command, "r");
    std::array<char, 4096> part{};
    while (std::fgets(part.data(), part.size(), pipe))
        text += part.data();
    ::pclose(pipe);
    std::smatch number;
    return std::regex_search(text, number, std::regex("[0-9]+(\\.[0-9]+)+")) ? number.str() : "";
}

/// Whether a list of versions, "Mutter 43, 48", holds the beginning of one.
bool isAmong(const std::string& version, const std::string& list)
{
    const std::regex number("[0-9.]+");
    for (std::sregex_iterator match(list.begin(), list.end(), number), end; match != end; ++match) {
        if ((version + ".").starts_with(match->str() + "."))
            return true;
    }
    return false;
}

Ability abilityIf(bool flag) { return flag ? Ability::yes : Ability::no; }

template <typename Scene> class DesktopAbilitiesContract : public testing::Test
{
protected:
    DesktopAbilitiesContract() { mScene.addWindowManager(); }
    void open()
    {
        mScreen = mScene.body.open({.name = "Tablet", .width = 1024, .height = 600, .input = true},
                                   mListener);
        ASSERT_TRUE(comesTrue([&] { return mListener->geometry.has_value(); }));
    }
    bool comesTrue(const std::function<bool()>& condition)
    {
        return waitUntil(condition, std::chrono::seconds(20));
    }
    bool becomes(double scale)
    {
        mScreen->setScale(scale);
        return waitUntil([&] { return mListener->geometry->scale == scale; },
                         std::chrono::seconds(expected.scale == Ability::no ? 1 : 20));
    }
    /// Makes a monitor in another process, and kills that.
    bool goesWithItsMaker()
    {
        const auto before = mScene.described();
        ChildProcess holder({FARVIEW_MONITOR_HOLDER});
        EXPECT_TRUE(comesTrue([&] { return mScene.described() != before; }));
        holder.kill();
        return waitUntil([&] { return mScene.described() == before; },
                         std::chrono::seconds(expected.crash == Ability::no ? 1 : 20));
    }

    const DesktopAbilities& expected = desktopAbilities(Scene::way);
    Scene mScene;
    std::shared_ptr<ScreenListener> mListener = std::make_shared<ScreenListener>();
    std::unique_ptr<VirtualScreen> mScreen;
};

using Scenes = testing::Types<ScreensOfAnXServer, ScreensOfAFullXServer, ScreensOfGnome>;
TYPED_TEST_SUITE(DesktopAbilitiesContract, Scenes);

TYPED_TEST(DesktopAbilitiesContract, TheTableNamesTheWayAndTheVersionThatRunHere)
{
    std::optional<ScreenAvailability> answer;
    this->mScene.body.availability(this->mListener, [&](const auto& found) { answer = found; });
    ASSERT_TRUE(this->comesTrue([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->way, TypeParam::way);
    const auto version = versionOf(TypeParam::versionCommand);
    EXPECT_TRUE(isAmong(version, this->expected.tested))
        << version << " is not among " << this->expected.tested;
}

TYPED_TEST(DesktopAbilitiesContract, TheTableSaysWhatTheMonitorIsLike)
{
    this->open();
    EXPECT_EQ(this->expected.monitor, abilityIf(!this->mListener->geometry->others.empty()));
    EXPECT_EQ(this->expected.pointer, abilityIf(!this->mScreen->cursor().isInFrames()));
    EXPECT_EQ(this->expected.windows, this->mScreen->windowKeeping());
    this->mScreen->resize(1200, 1600);
    EXPECT_EQ(this->expected.size, abilityIf(this->comesTrue([&] {
                  return this->mListener->geometry->width == 1200 &&
                         this->mListener->geometry->height == 1600;
              })));
    EXPECT_EQ(this->expected.scale, abilityIf(this->becomes(2)));
}

TYPED_TEST(DesktopAbilitiesContract, TheTableSaysWhichInputGetsThrough)
{
    this->open();
    const auto& input = this->mScreen->input();
    ASSERT_TRUE(this->comesTrue([&] { return input.abilities().pointer; }));
    EXPECT_EQ(this->expected.keys, abilityIf(input.abilities().keys));
    const bool needsRight = this->expected.touch == Ability::withARight;
    const bool isExpected =
        needsRight ? this->mScene.hasTheRight() : this->expected.touch == Ability::yes;
    EXPECT_EQ(isExpected, input.abilities().touch);
}

TYPED_TEST(DesktopAbilitiesContract, TheTableSaysWhetherTheMonitorGoesWithItsMaker)
{
    EXPECT_EQ(this->expected.crash, abilityIf(this->goesWithItsMaker()));
}

} // namespace
} // namespace farview
