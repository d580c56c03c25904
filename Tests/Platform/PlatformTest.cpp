#include "Platform/Platform.h"

#include "Platform/Fake/FakePlatform.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <new>

using farview::FakePlatform;
using farview::Platform;

namespace
{

TEST(Platform, IsEmptyAndSafeToCallUntilOneIsInstalled)
{
    auto& empty = Platform::current();
    EXPECT_EQ(empty.preferences->copyAppValue("key", "domain"), std::nullopt);
    EXPECT_FALSE(empty.preferences->appSynchronize("domain"));
    std::size_t count = 0;
    EXPECT_NE(empty.processTable->size(count), 0);
    EXPECT_EQ(empty.registry->entryFromPath("IOService:/IOResources/QLExGFX"), 0U);
    EXPECT_EQ(empty.bundles->bundleWithPath("/"), nullptr);
    EXPECT_FALSE(empty.workspace->openURL({}));
    EXPECT_EQ(empty.text->lowercase("ABC"), "ABC");
    const auto target = std::make_shared<int>();
    EXPECT_FALSE(empty.runLoop->scheduledTimer({}, true, target, [] {})->isValid());
    empty.runLoop->run({}, target, [] {})->stop();
    EXPECT_EQ(empty.virtualScreens->open({}, {}), nullptr);
    empty.discovery->makeBrowser()->searchForServicesOfType("_type._udp", "local.");
}

TEST(Platform, KnowsABodyOfEveryInterfaceBeforeAnythingIsFilledIn)
{
    // Memory that was used before: a pointer that nobody set would keep these bytes.
    alignas(Platform) std::array<std::byte, sizeof(Platform)> memory;
    memory.fill(std::byte{0xa5});
    const auto* made = new (memory.data()) Platform;
    const auto& empty = Platform::current();
    EXPECT_EQ(made->networkCondition, empty.networkCondition);
    EXPECT_EQ(std::memcmp(made, &empty, sizeof(Platform)), 0);
    auto answer = farview::NetworkKind::metered;
    const auto target = std::make_shared<int>();
    made->networkCondition->ask(target, [&](farview::NetworkKind kind) { answer = kind; });
    EXPECT_EQ(answer, farview::NetworkKind::absent);
}

TEST(Platform, AScopeInstallsAndRestores)
{
    FakePlatform outer;
    FakePlatform inner;
    auto& before = Platform::current();
    {
        const Platform::Scope outerScope(outer.platform());
        EXPECT_EQ(&Platform::current(), &outer.platform());
        {
            const Platform::Scope innerScope(inner.platform());
            EXPECT_EQ(&Platform::current(), &inner.platform());
        }
        EXPECT_EQ(&Platform::current(), &outer.platform());
    }
    EXPECT_EQ(&Platform::current(), &before);
}

TEST(Platform, CountsEveryChangeOfTheInstalledOne)
{
    FakePlatform fake;
    const auto before = Platform::generation();
    {
        const Platform::Scope scope(fake.platform());
        EXPECT_NE(Platform::generation(), before);
    }
    EXPECT_NE(Platform::generation(), before);
}

TEST(FakePlatform, InstallsNothingByItself)
{
    FakePlatform fake;
    EXPECT_NE(&Platform::current(), &fake.platform());
    EXPECT_EQ(fake.platform().preferences, &fake.preferences);
    EXPECT_EQ(fake.platform().application, fake.application.get());
}

} // namespace
