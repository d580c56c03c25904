#include "Common/PacketLog.h"

#include "Platform/Fake/FakePlatform.h"
#include "Tests/Support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <optional>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

/// A disk that a test looks at while a log is written to it, and that can stand still.
class Disk final : public FileManager
{
public:
    bool fileExistsAtPath(const std::string&) override { return false; }
    bool createDirectoryAtPath(const std::string& path) override
    {
        const std::lock_guard lock(mMutex);
        folders.push_back(path);
        mChanged.notify_all();
        return !isFull;
    }
    std::optional<PropertyList> propertyListWithContentsOfFile(const std::string&) override
    {
        return std::nullopt;
    }
    bool writePropertyList(const PropertyList&, const std::string&) override { return false; }
    bool writeData(ByteView bytes, const std::string& path) override
    {
        std::unique_lock lock(mMutex);
        ++mWritesBegun;
        mChanged.notify_all();
        mChanged.wait(lock, [this] { return !mStandsStill; });
        if (hasNoMemory)
            throw std::bad_alloc();
        if (!isFull)
            files.emplace_back(path, Bytes(bytes.begin(), bytes.end()));
        return !isFull;
    }

    void waitForFolders(std::size_t count)
    {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [&] { return folders.size() >= count; });
    }
    void waitForWrites(std::size_t count)
    {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [&] { return mWritesBegun >= count; });
    }
    void standStill(bool doesIt)
    {
        const std::lock_guard lock(mMutex);
        mStandsStill = doesIt;
        mChanged.notify_all();
    }

    // Read and changed while nothing is being written.
    bool isFull = false;
    bool hasNoMemory = false;
    std::vector<std::string> folders;
    std::vector<std::pair<std::string, Bytes>> files;

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::size_t mWritesBegun = 0;
    bool mStandsStill = false;
};

// Logging is switched on for the life of a process, so each of these tests has one of its own.
class PacketLogTest : public testing::Test
{
protected:
    PacketLogTest() { fake.platform().fileManager = &disk; }

    static LinkScreenRectangle packet(std::size_t size)
    {
        return {{1, 2, 3, 4}, QLScreenEncodingJPG, Bytes(size, 7)};
    }
    /// Switches a log on, does that, and ends the log.
    void withLog(PacketLog::Limits limits, const std::function<void(PacketLog&)>& action)
    {
        PacketLog log(fake.log, limits);
        log.setOn(true);
        action(log);
    }
    std::string lastLine() const { return fake.log.lines().back().message; }

    FakePlatform fake;
    Disk disk;
    Platform::Scope scope{fake.platform()};
};

TEST_F(PacketLogTest, PacketsAreWrittenAsTheyTravel)
{
    inItsOwnProcess([this] {
        withLog({}, [](PacketLog& log) { log.write(packet(9)); });
        EXPECT_THAT(disk.folders,
                    ElementsAre("/home/user/FarviewLogging (2026-01-02 03:04:05 +0000)"));
        ASSERT_THAT(disk.files, SizeIs(1));
        EXPECT_EQ(disk.files[0].second, Bytes(9, 7));
        EXPECT_EQ(fake.log.lines().at(1).message,
                  "screenRectangle = { { 1, 2 }, { 3, 4 } }, encoding: QLScreenEncodingJPG, "
                  "dataSize: 9");
    });
}

TEST_F(PacketLogTest, NothingIsWrittenUnlessItIsOn)
{
    inItsOwnProcess([this] {
        {
            PacketLog log(fake.log);
            log.write(packet(1));
            log.setOn(true);
            log.setOn(false);
            log.write(packet(1));
        }
        EXPECT_THAT(disk.folders, SizeIs(1));
        EXPECT_THAT(disk.files, IsEmpty());
    });
}

TEST_F(PacketLogTest, FramesThatAreNoPacketsAreLeftOut)
{
    inItsOwnProcess([this] {
        withLog({}, [](PacketLog& log) {
            log.write(LinkKeepAlive{});
            log.write(LinkPictureSize{4, 4});
            log.write(LinkFrameEnd{1});
        });
        EXPECT_THAT(fake.log.lines(), SizeIs(1)) << "only where packets are logged";
    });
}

TEST_F(PacketLogTest, SwitchingItOnAgainBeginsAnotherFolder)
{
    inItsOwnProcess([this] {
        withLog({}, [this](PacketLog& log) {
            log.setOn(true);
            log.write(packet(1));
            disk.waitForWrites(1);
            fake.clock.setDate(fake.clock.date() + std::chrono::seconds(1));
            log.setOn(false);
            log.setOn(true);
            log.write(packet(2));
        });
        ASSERT_THAT(disk.folders, SizeIs(2));
        ASSERT_THAT(disk.files, SizeIs(2));
        EXPECT_TRUE(disk.files[0].first.starts_with(disk.folders[0] + "/"));
        EXPECT_TRUE(disk.files[1].first.starts_with(disk.folders[1] + "/"));
    });
}

TEST_F(PacketLogTest, AFullLogEndsAndSaysSo)
{
    inItsOwnProcess([this] {
        withLog({.written = 16384}, [](PacketLog& log) {
            log.write(packet(1));
            log.write(packet(5000));
            log.write(packet(1));
            log.write(packet(1));
        });
        EXPECT_THAT(disk.files, SizeIs(2)) << "a small file takes a block too";
        EXPECT_EQ(lastLine(), "The log of screen packets ends: it is full");
    });
}

TEST_F(PacketLogTest, AFullDiskEndsTheLogOnly)
{
    inItsOwnProcess([this] {
        withLog({}, [this](PacketLog& log) {
            disk.waitForFolders(1);
            disk.isFull = true;
            log.write(packet(1));
            log.write(packet(1));
        });
        EXPECT_THAT(disk.files, IsEmpty());
        EXPECT_EQ(lastLine(), "The log of screen packets ends: its files cannot be written");
        EXPECT_THAT(fake.log.lines(), SizeIs(4)) << "the second packet is not tried any more";
    });
}

TEST_F(PacketLogTest, WantOfMemoryEndsTheLogOnly)
{
    inItsOwnProcess([this] {
        disk.hasNoMemory = true;
        withLog({}, [](PacketLog& log) {
            log.write(packet(1));
            log.write(packet(1));
        });
        EXPECT_EQ(lastLine(), "The log of screen packets ends: there is no memory");
    });
}

TEST_F(PacketLogTest, AHomeThatCannotBeWrittenEndsTheLog)
{
    inItsOwnProcess([this] {
        disk.isFull = true;
        withLog({}, [](PacketLog& log) { log.write(packet(1)); });
        EXPECT_EQ(lastLine(), "The log of screen packets ends: its files cannot be written");
    });
}

TEST_F(PacketLogTest, ADiskThatStandsStillHoldsNobodyUpAndEndsTheLog)
{
    inItsOwnProcess([this] {
        withLog({.waiting = 1000}, [this](PacketLog& log) {
            disk.standStill(true);
            log.write(packet(400));
            disk.waitForWrites(1);
            for (int i = 0; i < 10; ++i)
                log.write(packet(400));
            EXPECT_EQ(lastLine(), "The log of screen packets ends: the disk is too slow");
            disk.standStill(false);
            log.setOn(true);
            log.write(packet(1));
        });
        EXPECT_THAT(disk.files, SizeIs(2)) << "what was taken before is complete";
        EXPECT_THAT(disk.folders, SizeIs(1)) << "the user did not switch it on anew";
    });
}

} // namespace
