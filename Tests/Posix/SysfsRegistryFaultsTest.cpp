#include "Platform/Posix/Registry/SysfsRegistry.h"
#include "Tests/Support/LesserRights.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace farview
{
namespace
{

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using Entry = IORegistry::Entry;
const std::string servicePlane = "IOService";

class SysfsRegistryFaults : public testing::Test
{
protected:
    SysfsRegistry make()
    {
        return SysfsRegistry(DriverExtensions({mFolder.path("Extensions")}), mFolder.path("sys"),
                             mFolder.path("proc"));
    }
    void device(const std::string& path)
    {
        fs::create_directories(mFolder.path("sys/devices/" + path));
    }
    void removeDevice(const std::string& path)
    {
        fs::remove_all(mFolder.path("sys/devices/" + path));
    }
    Entry at(const std::string& path) { return mRegistry.entryFromPath(path); }
    std::string model() { return mRegistry.nameInPlane(machine(), servicePlane); }
    Entry machine() { return mRegistry.childEntries(mRegistry.rootEntry(), servicePlane).front(); }
    Names namesBelow(Entry entry)
    {
        Names names;
        for (const auto each : mRegistry.childEntries(entry, servicePlane))
            names.push_back(mRegistry.nameInPlane(each, servicePlane));
        return names;
    }
    /// All entries below that one, and itself, asked everything that a walk asks.
    std::set<Entry> walk(Entry entry)
    {
        std::set<Entry> seen{entry};
        mRegistry.nameInPlane(entry, servicePlane);
        mRegistry.locationInPlane(entry, servicePlane);
        mRegistry.className(entry);
        for (const auto child : mRegistry.childEntries(entry, servicePlane))
            seen.merge(walk(child));
        return seen;
    }

    TemporaryFolder mFolder;
    SysfsRegistry mRegistry = make();
};

TEST_F(SysfsRegistryFaults, AMachineWithoutAnyOfItsFoldersIsEmpty)
{
    EXPECT_EQ(walk(mRegistry.rootEntry()).size(), 3u);
    EXPECT_EQ(model(), "");
}

TEST_F(SysfsRegistryFaults, AFolderThatCannotBeReadHasNothingBelowIt)
{
    device("closed/inside");
    device("open/inside");
    fs::permissions(mFolder.path(), fs::perms::all);
    fs::permissions(mFolder.path("sys/devices/closed"), fs::perms::none);
    {
        const LesserRights lesser;
        EXPECT_EQ(namesBelow(machine()), (Names{"closed", "open"}));
        EXPECT_EQ(namesBelow(at("IOService://closed")), Names{});
        EXPECT_EQ(mRegistry.className(at("IOService://closed")), "IOService");
        EXPECT_EQ(namesBelow(at("IOService://open")), Names{"inside"});
    }
    fs::permissions(mFolder.path("sys/devices/closed"), fs::perms::all);
}

TEST_F(SysfsRegistryFaults, AModelThatCannotBeReadIsNone)
{
    const auto file = mFolder.write("sys/devices/virtual/dmi/id/product_name", "Secret\n");
    fs::permissions(mFolder.path(), fs::perms::all);
    fs::permissions(file, fs::perms::none);
    const LesserRights lesser;
    EXPECT_EQ(model(), "");
}

TEST_F(SysfsRegistryFaults, AModelThatIsNoTextFileIsNone)
{
    const std::string id = mFolder.path("sys/devices/virtual/dmi/id");
    fs::create_directories(id + "/product_name");
    EXPECT_EQ(model(), "") << "a folder";
    fs::remove(id + "/product_name");
    ASSERT_EQ(::mkfifo((id + "/product_name").c_str(), 0600), 0);
    EXPECT_EQ(model(), "") << "a pipe that nobody writes to";
    fs::remove(id + "/product_name");
    fs::create_symlink("product_name", id + "/product_name");
    EXPECT_EQ(model(), "") << "a link to itself";
    fs::remove(id + "/product_name");
    mFolder.write("sys/devices/virtual/dmi/id/product_name", std::string(100'000, 'x'));
    EXPECT_EQ(model(), "") << "too much to be a name";
}

TEST_F(SysfsRegistryFaults, ABlankModelCountsAsNone)
{
    mFolder.write("sys/devices/virtual/dmi/id/product_name", "  \n");
    EXPECT_EQ(model(), "");
    mFolder.write("proc/device-tree/model", std::string("Small Board\0", 12));
    EXPECT_EQ(model(), "Small Board");
}

TEST_F(SysfsRegistryFaults, AModelCannotTakeTheServicesPlace)
{
    mFolder.write("sys/devices/virtual/dmi/id/product_name", "IOResources\n");
    mFolder.write("sys/module/loaded/initstate", "live\n");
    EXPECT_NE(at("IOService:/IOResources/loaded"), 0u);
}

TEST_F(SysfsRegistryFaults, NamesAreTextWhateverTheKernelSays)
{
    device("broken\xFFname");
    mFolder.write("sys/devices/virtual/dmi/id/product_name", "Mod\xE4l\n");
    EXPECT_EQ(namesBelow(machine()).front(), "broken\uFFFDname");
    EXPECT_EQ(model(), "Mod\uFFFDl");
}

TEST_F(SysfsRegistryFaults, EntriesThatComeAndGoDuringAWalkAreNoTrouble)
{
    device("stays/child");
    const auto stays = at("IOService://stays/child");
    std::atomic<bool> isOver = false;
    std::thread churn([&] {
        for (int round = 0; !isOver; ++round) {
            const std::string name = "stays/x" + std::to_string(round % 5);
            device(name + "/below/that");
            removeDevice("stays/x" + std::to_string((round + 2) % 5));
        }
    });
    for (int round = 0; round < 300; ++round)
        EXPECT_TRUE(walk(mRegistry.rootEntry()).contains(stays));
    isOver = true;
    churn.join();
    EXPECT_EQ(at("IOService://stays/child"), stays);
}

TEST_F(SysfsRegistryFaults, ThereAreNoMoreHandlesThanEntries)
{
    device("stays");
    std::set<Entry> ever;
    for (int round = 0; round < 200; ++round) {
        const std::string name = "bus" + std::to_string(round);
        device(name + "/below");
        const auto entry = at("IOService://" + name + "/below");
        EXPECT_TRUE(ever.insert(entry).second) << "no number belongs to two entries";
        const auto entries = walk(mRegistry.rootEntry());
        EXPECT_EQ(mRegistry.handleCount(), entries.size());
        removeDevice(name);
    }
    walk(mRegistry.rootEntry());
    EXPECT_EQ(mRegistry.handleCount(), 4u) << "the root, the machine, its services, and one device";
}

TEST_F(SysfsRegistryFaults, ServicesThatWereOnlyAskedForAreForgottenToo)
{
    for (int round = 0; round < 50; ++round) {
        const std::string module = "module" + std::to_string(round);
        mFolder.write("sys/module/" + module + "/initstate", "live\n");
        EXPECT_NE(at("IOService:/IOResources/" + module), 0u);
        fs::remove_all(mFolder.path("sys/module/" + module));
        EXPECT_EQ(at("IOService:/IOResources/none"), 0u);
        EXPECT_EQ(mRegistry.handleCount(), 3u);
    }
}

TEST_F(SysfsRegistryFaults, AnEntryThatReturnsIsANewOne)
{
    device("a/b");
    const auto a = at("IOService://a");
    const auto b = at("IOService://a/b");
    removeDevice("a");
    walk(mRegistry.rootEntry());
    EXPECT_EQ(mRegistry.className(b), "");
    device("a/b");
    EXPECT_NE(at("IOService://a"), a);
    EXPECT_NE(at("IOService://a/b"), b);
}

TEST_F(SysfsRegistryFaults, ADeepTreeEndsWhereItEnds)
{
    std::string path = "d";
    for (int level = 1; level < 400; ++level)
        path += "/d";
    device(path);
    EXPECT_EQ(walk(mRegistry.rootEntry()).size(), 403u);
}

} // namespace
} // namespace farview
