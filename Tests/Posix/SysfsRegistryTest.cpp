#include "Platform/Posix/Registry/SysfsRegistry.h"

#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace farview
{
namespace
{

using Names = std::vector<std::string>;
const std::string plane = "IOService";

std::string extension(const std::string& platform)
{
    return "<plist><dict><key>CFBundleIdentifier</key><string>com.quillon.X</string>"
           "<key>QLNPlatform</key><string>" +
           platform + "</string></dict></plist>";
}

class SysfsRegistryTest : public testing::Test
{
protected:
    SysfsRegistry make()
    {
        return SysfsRegistry(DriverExtensions({mFolder.path("user"), mFolder.path("system")}),
                             mFolder.path("sys"), mFolder.path("proc"));
    }
    void install(const std::string& name, const std::string& info)
    {
        mFolder.write(name + ".kext/Contents/Info.plist", info);
    }
    Names namesBelow(IORegistry::Entry entry)
    {
        Names names;
        for (const auto each : mRegistry.childEntries(entry, plane))
            names.push_back(mRegistry.nameInPlane(each, plane));
        return names;
    }
    IORegistry::Entry at(const std::string& path) { return mRegistry.entryFromPath(path); }
    Names services() { return namesBelow(at("IOService:/IOResources")); }

    TemporaryFolder mFolder;
    SysfsRegistry mRegistry = make();
};

TEST_F(SysfsRegistryTest, TheFirstChildOfTheRootIsNamedByTheModel)
{
    EXPECT_EQ(namesBelow(mRegistry.rootEntry()), (Names{"", "IOResources"}));
    mFolder.write("sys/firmware/devicetree/base/model", std::string("Small Board\0", 12));
    EXPECT_EQ(namesBelow(mRegistry.rootEntry()).front(), "Small Board");
    mFolder.write("sys/devices/virtual/dmi/id/product_name", "Laptop 3000\n");
    EXPECT_EQ(namesBelow(mRegistry.rootEntry()).front(), "Laptop 3000");
}

TEST_F(SysfsRegistryTest, BelowTheMachineIsTheTreeOfDevices)
{
    mFolder.write("sys/devices/pci0000:00/0000:00:02.0/uevent", "");
    mFolder.write("sys/devices/platform/uevent", "");
    mFolder.write("sys/devices/uevent", "");
    const auto machine = mRegistry.childEntries(mRegistry.rootEntry(), plane).front();
    EXPECT_EQ(namesBelow(machine), (Names{"pci0000", "platform"}));
    const auto bridge = mRegistry.childEntries(machine, plane).front();
    EXPECT_EQ(namesBelow(bridge), (Names{"pci"}));
    EXPECT_EQ(mRegistry.childEntries(machine, "IOUSB"), std::vector<IORegistry::Entry>{});
}

TEST_F(SysfsRegistryTest, TheClassOfADeviceIsItsSubsystem)
{
    mFolder.write("sys/devices/pci0000:00/0000:00:02.0/uevent", "");
    std::filesystem::create_symlink("../../../bus/pci",
                                    mFolder.path("sys/devices/pci0000:00/0000:00:02.0/subsystem"));
    const auto device = at("IOService://pci0000@00/pci@0000:00:02.0");
    ASSERT_NE(device, 0u);
    EXPECT_EQ(mRegistry.className(device), "pci");
    EXPECT_EQ(mRegistry.superclassOf("pci"), "IOService");
    EXPECT_EQ(mRegistry.superclassOf("IOService"), "IORegistryEntry");
    EXPECT_EQ(mRegistry.superclassOf("IORegistryEntry"), std::nullopt);
}

TEST_F(SysfsRegistryTest, LinksLoopsAndVanishedEntriesAreSkipped)
{
    mFolder.write("sys/devices/a/b/uevent", "");
    std::filesystem::create_symlink("..", mFolder.path("sys/devices/a/loop"));
    std::filesystem::create_symlink("/nonexistent", mFolder.path("sys/devices/a/broken"));
    const auto a = at("IOService://a");
    EXPECT_EQ(namesBelow(a), Names{"b"});
    EXPECT_EQ(at("IOService://a/loop"), 0u);
    const auto b = at("IOService://a/b");
    std::filesystem::remove_all(mFolder.path("sys/devices/a"));
    EXPECT_EQ(namesBelow(a), Names{});
    EXPECT_EQ(namesBelow(b), Names{});
    EXPECT_EQ(mRegistry.nameInPlane(b, plane), "") << "its number is nobody's now";
    EXPECT_EQ(at("IOService://a"), 0u);
}

TEST_F(SysfsRegistryTest, HandlesStayTheSame)
{
    mFolder.write("sys/devices/a/uevent", "");
    mFolder.write("sys/devices/c/uevent", "");
    const auto a = at("IOService://a");
    const auto c = at("IOService://c");
    mFolder.write("sys/devices/b/uevent", "");
    const auto machine = mRegistry.childEntries(mRegistry.rootEntry(), plane).front();
    const auto children = mRegistry.childEntries(machine, plane);
    ASSERT_EQ(children.size(), 3u);
    EXPECT_EQ(children[0], a);
    EXPECT_EQ(children[2], c);
    EXPECT_EQ(at("IOService://a"), a);
}

TEST_F(SysfsRegistryTest, PublishesUsableExtensionsAndLoadedModules)
{
    install("system/QLExGFX", extension("Linux"));
    install("user/Other", extension("Linux"));
    mFolder.write("sys/module/loaded/initstate", "live\n");
    mFolder.write("sys/module/leaving/initstate", "going\n");
    mFolder.write("sys/module/builtin/parameters/x", "");
    EXPECT_EQ(services(), (Names{"Other", "QLExGFX", "loaded"}));
    EXPECT_NE(at("IOService:/IOResources/loaded"), 0u);
    EXPECT_EQ(at("IOService:/IOResources/builtin"), 0u);
    EXPECT_EQ(mRegistry.className(at("IOService:/IOResources/loaded")), "IOService");
}

TEST_F(SysfsRegistryTest, AnUnusableExtensionIsNotPublished)
{
    for (const auto& info :
         {extension("Other"), std::string("broken"), std::string("<plist><dict/></plist>"),
          std::string(
              "<plist><dict><key>QLNPlatform</key><string>Linux</string></dict></plist>")}) {
        install("system/QLExGFX", info);
        EXPECT_EQ(at("IOService:/IOResources/QLExGFX"), 0u) << info;
        EXPECT_EQ(services(), Names{});
    }
}

TEST_F(SysfsRegistryTest, AUsableOneBehindABrokenOneIsFound)
{
    install("user/QLExGFX", "broken");
    install("system/QLExGFX", extension("Linux"));
    EXPECT_NE(at("IOService:/IOResources/QLExGFX"), 0u);
}

TEST_F(SysfsRegistryTest, NoPathLeadsOutside)
{
    install("system/QLExGFX", extension("Linux"));
    mFolder.write("sys/devices/a/uevent", "");
    for (const char* path :
         {"", "IOService", "IOUSB:/IOResources/QLExGFX", "IOService:/IOResources/../QLExGFX",
          "IOService:/IOResources/", "IOService:/IOResources/none", "IOService:/IOResources//x",
          "IOService:/IOResources/QLExGFX/x", "IOService://../a", "IOService://a/..",
          "IOService://.", "IOService:/Root"}) {
        const auto entry = at(path);
        EXPECT_TRUE(entry == 0 || std::string(path) == "IOService:/IOResources/") << path;
    }
}

TEST_F(SysfsRegistryTest, AnUnknownHandleIsNoEntry)
{
    for (const IORegistry::Entry entry : {0u, 4u, 4000000000u}) {
        EXPECT_EQ(mRegistry.nameInPlane(entry, plane), "");
        EXPECT_EQ(mRegistry.className(entry), "");
        EXPECT_TRUE(mRegistry.childEntries(entry, plane).empty());
    }
}

TEST_F(SysfsRegistryTest, FindingADriverDoesNotWalkTheDevices)
{
    install("system/First", extension("Linux"));
    install("system/Second", extension("Linux"));
    mFolder.write("sys/devices/a/b/uevent", "");
    const auto first = at("IOService:/IOResources/First");
    // Handles count up: had a device been met on the way, it would have taken the next one.
    EXPECT_EQ(at("IOService:/IOResources/Second"), first + 1);
    EXPECT_EQ(at("IOService:/IOResources/First"), first);
}

std::size_t entriesBelow(IORegistry& registry, IORegistry::Entry entry, int depth)
{
    std::size_t count = 1;
    for (const auto child : registry.childEntries(entry, plane))
        count += depth > 0 ? entriesBelow(registry, child, depth - 1) : 0;
    return count;
}

TEST(SysfsRegistryOnThisMachine, CanBeWalkedWhole)
{
    SysfsRegistry registry(DriverExtensions({}));
    EXPECT_GE(entriesBelow(registry, registry.rootEntry(), 200), 3u);
}

} // namespace
} // namespace farview
