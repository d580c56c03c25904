// The explorer on the scripted registry and on the kernel's folders.

#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Fake/FakeText.h"
#include "Platform/Platform.h"
#include "Tests/Contract/RegistryScenes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <malloc.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace farview
{
namespace
{

template <typename Scene> class RegistryExplorerContract : public testing::Test
{
protected:
    RegistryExplorerContract()
    {
        mPlatform.registry = &mScene.body;
        mPlatform.text = &mText;
        explorer.init();
        explorer.setCurrentPlane(plane);
    }
    std::vector<std::string> found(const char* text)
    {
        explorer.buildFullRegistryDictionary();
        return explorer.searchResultsForText(text, true, false);
    }

    Scene mScene;
    FakeText mText;
    Platform mPlatform;
    Platform::Scope mInstalled{mPlatform};
    QLNRegistryExplorer explorer{mScene.body, mText};
};

TYPED_TEST_SUITE(RegistryExplorerContract, RegistryScenes);

TYPED_TEST(RegistryExplorerContract, TellsTheModelOfTheMachine)
{
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), "Model");
}

TYPED_TEST(RegistryExplorerContract, NamesAnEntryWithItsLocationWhenItHasOne)
{
    EXPECT_THAT(this->found("sysTM"), ElementsAre(":Root:Model:LNXSYSTM@00"));
    EXPECT_THAT(this->found("@02"), ElementsAre(":Root:Model:LNXSYSTM@00:PNP0C0F@02"));
}

TYPED_TEST(RegistryExplorerContract, FindsDevicesAndServicesInTheOrderOfTheRegistry)
{
    EXPECT_THAT(this->found("e"),
                ElementsAre(":Root:Model", ":Root:Model:bridge", ":Root:Model:bridge:device1",
                            ":Root:Model:bridge:device2", ":Root:IOResources",
                            ":Root:IOResources:QLExGFX"));
    EXPECT_THAT(this->found(""), IsEmpty());
}

TYPED_TEST(RegistryExplorerContract, AServiceIsThereExactlyWhileItIsPublished)
{
    EXPECT_TRUE(this->explorer.findNamedIORegistryService("QLExGFX"));
    EXPECT_FALSE(this->explorer.findNamedIORegistryService("QLExGF"));
    this->mScene.unpublish();
    EXPECT_FALSE(this->explorer.findNamedIORegistryService("QLExGFX"));
}

TYPED_TEST(RegistryExplorerContract, TheSameMachineIsReadTheSameTwice)
{
    this->explorer.buildFullRegistryDictionary();
    const auto first = this->explorer.registryDictionary();
    this->explorer.buildFullRegistryDictionary();
    EXPECT_EQ(this->explorer.registryDictionary(), first);
}

/// The kernel's folders only.
using RegistryExplorerOnFolders = RegistryExplorerContract<RegistryInFolders>;

TEST_F(RegistryExplorerOnFolders, AMachineThatTellsNoModelHasAnEmptyOne)
{
    std::filesystem::remove_all(mScene.folder.path("sys/devices/virtual"));
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), "");
    EXPECT_THAT(found("bridge"), ElementsAre(":Root::bridge"));
    mScene.folder.write("proc/device-tree/model", std::string("Board 4\0", 8));
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), "Board 4");
}

TEST_F(RegistryExplorerOnFolders, AModelsNameIsCutLikeEveryName)
{
    mScene.folder.write("sys/devices/virtual/dmi/id/product_name", std::string(126, 'm') + "ä\n");
    EXPECT_EQ(QLNRegistryExplorer::computerModel(), std::string(126, 'm'));
}

TEST_F(RegistryExplorerOnFolders, FoldersWithoutEndAreReadAsFarAsAMachineCanGo)
{
    std::string path = "sys/devices/deep";
    for (int level = 0; level < 400; ++level)
        path += "/d";
    std::filesystem::create_directories(mScene.folder.path(path));
    EXPECT_EQ(found("deep").size(), 1u);
    EXPECT_GT(found("d").size(), 200u);
}

TEST_F(RegistryExplorerOnFolders, MemoryIsFreedWithWhatWasBuilt)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer's allocator does not tell how much is in use";
#endif
    for (int number = 0; number < 300; ++number)
        std::filesystem::create_directories(
            mScene.folder.path("sys/devices/many/device" + std::to_string(number)));
    explorer.buildFullRegistryDictionary();
    explorer.init();
    const auto before = mallinfo2().uordblks;
    explorer.buildFullRegistryDictionary();
    const auto built = mallinfo2().uordblks - before;
    explorer.buildFullRegistryDictionary();
    EXPECT_LT(mallinfo2().uordblks - before, built * 3 / 2) << "only the last one is kept";
    explorer.init();
    EXPECT_GT(built, 100'000u);
    EXPECT_LT(mallinfo2().uordblks, before + built / 10);
}

} // namespace
} // namespace farview
