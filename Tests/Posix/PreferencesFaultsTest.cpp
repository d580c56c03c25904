#include "Platform/Fake/FakeRunLoop.h"
#include "Platform/Posix/PropertyLists/PropertyListReader.h"
#include "Platform/Posix/Settings/LockFile.h"
#include "Tests/Posix/PreferencesFixture.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/OwnMounts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fcntl.h>
#include <optional>
#include <poll.h>

namespace farview
{
namespace
{

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class PreferencesFaults : public PreferencesFixture
{
protected:
    void withOwnMounts(const std::function<void()>& body)
    {
        withOwnDisk(mFolder.path("config"), body);
    }
};

TEST_F(PreferencesFaults, AStoppedHolderOfTheLockCostsOneSecondInAll)
{
    EXPECT_TRUE(store(0));
    ForkedProcess holder([] {
        LockFile lock;
        EXPECT_EQ(lock.acquire(path() + ".lock", 1s), 0);
        ::raise(SIGSTOP);
    });
    ASSERT_TRUE(holder.waitUntilStopped());
    const auto start = Clock::now();
    EXPECT_FALSE(store(1));
    EXPECT_GT(Clock::now() - start, 900ms);
    const auto second = Clock::now();
    for (int count = 0; count < 20; ++count)
        EXPECT_FALSE(store(2));
    EXPECT_LT(Clock::now() - second, 10s) << "a second each would be twenty";
    EXPECT_EQ(read(), PropertyList(2));
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList(0));
    EXPECT_EQ(mLog.lines().size(), 1u);
    holder.kill();
    holder.wait();
    EXPECT_TRUE(mPreferences->appSynchronize(domain));
    EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList(2));
}

TEST_F(PreferencesFaults, AShortHoldOfTheLockIsWaitedFor)
{
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe2(ready.data(), O_CLOEXEC), 0);
    EXPECT_TRUE(store(0));
    ForkedProcess holder([&] {
        LockFile lock;
        EXPECT_EQ(lock.acquire(path() + ".lock", 1s), 0);
        EXPECT_EQ(::write(ready[1], "x", 1), 1);
        ::usleep(100000);
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_TRUE(store(1));
    EXPECT_EQ(holder.wait(), 0);
    ::close(ready[0]);
    ::close(ready[1]);
}

/// A program with a loop, and another one that writes for as long as the test wants.
class PreferencesOnALoop : public PreferencesFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(store("old"));
        mOther.emplace();
        ASSERT_EQ(mOther->acquire(path() + ".lock", 1s), 0);
        mProgram.emplace(locations(), mLog, &mLoop);
        mProgram->setAppValue("key", PropertyList("new"), domain);
        EXPECT_FALSE(mProgram->appSynchronize(domain));
    }
    std::optional<PropertyList> stored() { return make()->copyAppValue("key", domain); }

    FakeRunLoop mLoop;
    std::optional<LockFile> mOther;
    std::optional<FilePreferences> mProgram;
    int mLateWrites = 0;
};

TEST_F(PreferencesOnALoop, WhatAnotherWriterHeldUpIsWrittenByTheLoopAndTold)
{
    auto late = mProgram->observeLateWrites([this] { ++mLateWrites; });
    EXPECT_EQ(mProgram->copyAppValue("key", domain), PropertyList("new"));
    mLoop.advance(Duration{0.1});
    EXPECT_EQ(stored(), PropertyList("old"));
    EXPECT_EQ(mLateWrites, 0);
    mOther.reset();
    mLoop.advance(Duration{1.0});
    EXPECT_EQ(stored(), PropertyList("new"));
    EXPECT_EQ(mLateWrites, 1);
    mLoop.advance(Duration{10.0});
    EXPECT_EQ(mLateWrites, 1) << "once";
    late.end();
}

TEST_F(PreferencesOnALoop, WhatASynchronizeWroteMeanwhileIsNotToldAgain)
{
    const auto late = mProgram->observeLateWrites([this] { ++mLateWrites; });
    mOther.reset();
    EXPECT_TRUE(mProgram->appSynchronize(domain));
    mLoop.advance(Duration{10.0});
    EXPECT_EQ(mLateWrites, 0);
}

TEST_F(PreferencesOnALoop, AWriterThatStandsStillIsWorthOneLine)
{
    EXPECT_TRUE(mLog.lines().empty());
    mLoop.advance(Duration{60.0});
    EXPECT_EQ(mLog.lines().size(), 1u);
}

TEST_F(PreferencesOnALoop, AtItsEndItWritesWhatWasHeldUp)
{
    mOther.reset();
    mProgram.reset();
    EXPECT_EQ(stored(), PropertyList("new"));
}

TEST_F(PreferencesFaults, ALockFileThatWasCleanedAwayIsMadeAnew)
{
    EXPECT_TRUE(store(0));
    std::filesystem::remove(path() + ".lock");
    EXPECT_TRUE(store(1));
    EXPECT_EQ(modeOf(path() + ".lock"), 0600u);
}

TEST_F(PreferencesFaults, AReadOnlyDiskLosesNothing)
{
    withOwnMounts([this] {
        EXPECT_TRUE(store("old"));
        setReadOnly(mFolder.path("config"), true);
        EXPECT_FALSE(store("new"));
        EXPECT_FALSE(store("more", "other"));
        EXPECT_EQ(read(), PropertyList("new"));
        EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList("old"));
        EXPECT_EQ(mLog.lines().size(), 1u);
        setReadOnly(mFolder.path("config"), false);
        EXPECT_TRUE(mPreferences->appSynchronize(domain));
        EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList("new"));
        EXPECT_EQ(make()->copyAppValue("other", domain), PropertyList("more"));
    });
}

TEST_F(PreferencesFaults, AFirstStartOnAReadOnlyDiskWorksFromMemory)
{
    withOwnMounts([this] {
        setReadOnly(mFolder.path("config"), true);
        EXPECT_FALSE(store("new"));
        EXPECT_EQ(read(), PropertyList("new"));
        EXPECT_EQ(make()->copyAppValue("key", domain), std::nullopt);
    });
}

TEST_F(PreferencesFaults, AFullDiskLosesNothing)
{
    withOwnMounts([this] {
        EXPECT_TRUE(store("old"));
        fillDisk(mFolder.path("config/ballast"));
        const std::string large(8192, 'x');
        EXPECT_FALSE(store(large));
        EXPECT_EQ(read(), PropertyList(large));
        EXPECT_EQ(contentsOf(path()), listWith("key", "old"));
        EXPECT_FALSE(std::filesystem::exists(path() + ".new-1"));
        std::filesystem::remove(mFolder.path("config/ballast"));
        EXPECT_TRUE(mPreferences->appSynchronize(domain));
        EXPECT_EQ(make()->copyAppValue("key", domain), PropertyList(large));
    });
}

TEST_F(PreferencesFaults, AFullDiskKeepsABrokenFileInItsPlace)
{
    withOwnMounts([this] {
        writeFile("broken");
        fillDisk(mFolder.path("config/ballast"));
        EXPECT_FALSE(store(std::string(8192, 'x')));
        EXPECT_EQ(contentsOf(path()), "broken");
    });
}

/// A folder in memory where the machine has one: writers then meet at the lock, not at the disk.
class MemoryFolder
{
public:
    explicit MemoryFolder(const std::string& otherwise) : mPath("/dev/shm/farview-test-XXXXXX")
    {
        mIsOwn = ::mkdtemp(mPath.data()) != nullptr;
        if (!mIsOwn)
            mPath = otherwise;
    }
    ~MemoryFolder()
    {
        std::error_code ignored;
        if (mIsOwn)
            std::filesystem::remove_all(mPath, ignored);
    }
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;
    const std::string& path() const { return mPath; }

private:
    std::string mPath;
    bool mIsOwn;
};

constexpr int writesPerWriter = 500;
constexpr int keysPerWriter = 20;

std::string keyOf(int writer, int number)
{
    return std::to_string(writer) + "." + std::to_string(number % keysPerWriter);
}

bool synchronizeWithPatience(FilePreferences& preferences)
{
    constexpr int mostAttempts = 5000;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        if (preferences.appSynchronize(domain))
            return true;
        ::usleep(1000);
    }
    return false;
}

/// Stores rising numbers under keys that no one else changes. Whatever of them is older than what
/// was stored last was lost to another writer.
void writeOwnKeys(FilePreferences& preferences, int writer)
{
    for (int number = 0; number < writesPerWriter; ++number) {
        preferences.setAppValue(keyOf(writer, number), number, domain);
        ASSERT_TRUE(synchronizeWithPatience(preferences));
        for (int last = std::max(0, number - keysPerWriter + 1); last <= number; ++last)
            ASSERT_EQ(preferences.copyAppValue(keyOf(writer, last), domain), PropertyList(last));
    }
}

TEST_F(PreferencesFaults, FourProcessesOfFiveHundredWritesLoseNone)
{
    constexpr int writers = 4;
    const MemoryFolder folder(mFolder.path());
    const ScopedEnvironment config("XDG_CONFIG_HOME", folder.path().c_str());
    mPreferences = make();
    EXPECT_TRUE(store("kept", "first"));
    std::vector<std::unique_ptr<ForkedProcess>> processes;
    for (int writer = 0; writer < writers; ++writer)
        processes.push_back(
            std::make_unique<ForkedProcess>([&, writer] { writeOwnKeys(*make(), writer); }));
    const auto isRunning = [](const auto& process) { return !process->hasEnded(); };
    while (std::any_of(processes.begin(), processes.end(), isRunning)) {
        const auto whole = PropertyListReader::read(contentsOf(path()));
        ASSERT_TRUE(whole.list) << "a reader met a torn file: " << whole.reason;
        ::usleep(2000);
    }
    for (const auto& process : processes)
        EXPECT_EQ(process->wait(), 0);
    for (int writer = 0; writer < writers; ++writer) {
        for (int last = writesPerWriter - keysPerWriter; last < writesPerWriter; ++last)
            EXPECT_EQ(read(keyOf(writer, last)), PropertyList(last));
    }
    EXPECT_EQ(read("first"), PropertyList("kept"));
    EXPECT_EQ(names(), (std::vector<std::string>{domain + ".plist", domain + ".plist.lock"}));
}

TEST_F(PreferencesFaults, TwoWritersOfOneKeyLeaveOneOfTheirValues)
{
    const auto write = [this](int writer) {
        const auto preferences = make();
        for (int number = 0; number < 100; ++number) {
            preferences->setAppValue("key", writer, domain);
            EXPECT_TRUE(synchronizeWithPatience(*preferences));
        }
    };
    ForkedProcess first([&] { write(1); });
    ForkedProcess second([&] { write(2); });
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_TRUE(read() == PropertyList(1) || read() == PropertyList(2));
}

/// Writes the same rising number under two keys and says each number that is on the disk.
void writePairs(FilePreferences& preferences, int start, int acknowledgements)
{
    for (int number = start;; ++number) {
        preferences.setAppValue("left", number, domain);
        preferences.setAppValue("right", number, domain);
        ASSERT_TRUE(preferences.appSynchronize(domain));
        ASSERT_EQ(::write(acknowledgements, &number, sizeof number), ssize_t{sizeof number});
    }
}

bool hasInput(int descriptor)
{
    pollfd waiting{descriptor, POLLIN, 0};
    return ::poll(&waiting, 1, 10'000) == 1;
}

int lastNumberIn(int descriptor, int fallback)
{
    int number = fallback;
    while (::read(descriptor, &number, sizeof number) == ssize_t{sizeof number}) {
    }
    return number;
}

TEST_F(PreferencesFaults, AKillAtAnyMomentLeavesAWholeFileWithAllThatWasAcknowledged)
{
    constexpr int kills = 150;
    int acknowledged = 0;
    EXPECT_TRUE(store(0, "left"));
    EXPECT_TRUE(store(0, "right"));
    EXPECT_TRUE(store("kept", "other"));
    for (int round = 0; round < kills; ++round) {
        std::array<int, 2> pipe{};
        ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC | O_NONBLOCK), 0);
        {
            ForkedProcess writer([&] { writePairs(*make(), acknowledged + 1, pipe[1]); });
            // Every other one is killed after its first write, however busy the computer is.
            if (round % 2 == 0) {
                ASSERT_TRUE(hasInput(pipe[0]));
            }
            ::usleep(static_cast<useconds_t>(1000 + round * 7919 % 9000));
        }
        acknowledged = lastNumberIn(pipe[0], acknowledged);
        ::close(pipe[0]);
        ::close(pipe[1]);
        const auto left = make()->copyAppValue("left", domain);
        ASSERT_TRUE(left && left->is<std::int64_t>()) << "round " << round;
        ASSERT_GE(*left->get<std::int64_t>(), acknowledged);
        ASSERT_EQ(left, make()->copyAppValue("right", domain));
        ASSERT_EQ(make()->copyAppValue("other", domain), PropertyList("kept"));
    }
    EXPECT_GE(acknowledged, kills / 2);
    EXPECT_TRUE(store(1, "last"));
    EXPECT_EQ(names(), (std::vector<std::string>{domain + ".plist", domain + ".plist.lock"}));
}

} // namespace
} // namespace farview
