// A panel on show whose settings cannot be stored, or are stored by many at once.

#include "Platform/Posix/Settings/FilePreferences.h"
#include "Tests/Integration/PaneSystem.h"
#include "Tests/Support/ForkedProcess.h"

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <sys/mount.h>

namespace farview
{
namespace
{

using std::chrono::seconds;

class PaneDiskFaults : public PaneSystem
{
protected:
    void SetUp() override
    {
        PaneSystem::SetUp();
        if (IsSkipped())
            return;
        // A small disk of its own; in memory, so that many writes take no time.
        std::filesystem::create_directory(home.path("config"));
        ASSERT_EQ(::mount("none", home.path("config").c_str(), "tmpfs", 0, "size=1048576"), 0);
    }
    void TearDown() override
    {
        pane.reset();
        ::umount2(home.path("config").c_str(), MNT_DETACH);
    }

    void setReadOnly(bool isReadOnly)
    {
        const unsigned long flags = MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0);
        ASSERT_EQ(::mount("none", home.path("config").c_str(), nullptr, flags, nullptr), 0);
    }
    void fillDisk()
    {
        std::array<char, 512> block{};
        const int file =
            ::open(home.path("config/ballast").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        while (::write(file, block.data(), block.size()) > 0) {
        }
        ::close(file);
    }
    void emptyDisk() { std::filesystem::remove(home.path("config/ballast")); }

    static std::unique_ptr<FilePreferences> anotherProgram(Log& log)
    {
        return std::make_unique<FilePreferences>(PreferencesLocations(EnvironmentUse::honoured),
                                                 log);
    }
    std::optional<PropertyList> stored(const std::string& key)
    {
        return anotherProgram(publisherLog)->copyAppValue(key, kApplicationID);
    }
    void storeElsewhere(const std::string& key, PropertyList value)
    {
        const auto other = anotherProgram(publisherLog);
        other->setAppValue(key, std::move(value), kApplicationID);
        ASSERT_TRUE(other->appSynchronize(kApplicationID));
    }
    /// Presses much, with the loop running between; how many announcements followed.
    std::size_t announcementsOfPresses()
    {
        const auto before = heard(kFVEPrefsDidChangeNotification);
        for (int round = 0; round < 3; ++round) {
            pane->onTextPressed(nullptr);
            pane->enableTouchDisplay()->performClick(nullptr);
            pane->enableTouchDisplayPressed(pane->enableTouchDisplay().get());
            runLoopFor(std::chrono::milliseconds(100));
            pane->offTextPressed(nullptr);
        }
        runLoopFor(seconds(1));
        return heard(kFVEPrefsDidChangeNotification) - before;
    }
    /// What the pane shows when it can store nothing, and afterwards.
    void expectThatNothingIsLostWhile(const std::function<void()>& breakDisk,
                                      const std::function<void()>& repairDisk);
};

/// So many announcements follow when all is well; a fault may add the announcement of a default,
/// but never one for each answer to another.
constexpr std::size_t mostAnnouncements = 40;

void PaneDiskFaults::expectThatNothingIsLostWhile(const std::function<void()>& breakDisk,
                                                  const std::function<void()>& repairDisk)
{
    storeElsewhere("somebody else's", "kept");
    storeElsewhere(kLastOtherDeviceName, "192.168.1.7");
    load();
    listenTo(kFVEPrefsDidChangeNotification);
    show();
    runLoopFor(std::chrono::milliseconds(300));

    breakDisk();
    EXPECT_LE(announcementsOfPresses(), mostAnnouncements);
    const auto quiet = heard(kFVEPrefsDidChangeNotification);
    runLoopFor(seconds(1));
    EXPECT_EQ(heard(kFVEPrefsDidChangeNotification), quiet) << "it does not go on by itself";
    EXPECT_EQ(stored("somebody else's"), PropertyList("kept"));
    EXPECT_EQ(stored(kLastOtherDeviceName), PropertyList("192.168.1.7"));
    EXPECT_EQ(switchState(), 0) << "the pane follows the user all the same";
    hide();
    show();
    pane->onTextPressed(nullptr);
    EXPECT_EQ(switchState(), 1);

    repairDisk();
    preferences().synchronize();
    EXPECT_EQ(stored(kCurrentState), PropertyList(1));
    EXPECT_EQ(stored("somebody else's"), PropertyList("kept"));
    EXPECT_EQ(stored(kLastOtherDeviceName), PropertyList("192.168.1.7"));
}

TEST_F(PaneDiskFaults, AReadOnlyDiskLosesNothingAndStartsNoStorm)
{
    expectThatNothingIsLostWhile([this] { setReadOnly(true); }, [this] { setReadOnly(false); });
}

TEST_F(PaneDiskFaults, AFullDiskLosesNothingAndStartsNoStorm)
{
    expectThatNothingIsLostWhile([this] { fillDisk(); }, [this] { emptyDisk(); });
}

TEST_F(PaneDiskFaults, AFirstShowingOnAReadOnlyDiskWorks)
{
    setReadOnly(true);
    areConfirmed = false;
    load();
    listenTo(kFVEPrefsDidChangeNotification);
    show();
    turnOn();
    EXPECT_EQ(switchState(), 1);
    runLoopFor(seconds(1));
    EXPECT_LE(heard(kFVEPrefsDidChangeNotification), mostAnnouncements);
    pane->offTextPressed(nullptr);
    EXPECT_TRUE(serversAre(0));
}

TEST_F(PaneDiskFaults, AWriterThatIsKilledInTheMiddleShowsThePaneWholeSettingsOnly)
{
    storeElsewhere(kEnableTouchDisplayOption, false);
    load();
    show();
    for (int round = 0; round < 60; ++round) {
        {
            ForkedProcess writer([this] {
                const auto other = anotherProgram(publisherLog);
                for (int number = 0;; ++number) {
                    other->setAppValue("number", number, kApplicationID);
                    other->setAppValue("ballast", std::string(20'000, 'x'), kApplicationID);
                    other->appSynchronize(kApplicationID);
                }
            });
            // On a busy computer none of them may get to its first write in that time.
            if (round == 0) {
                ASSERT_TRUE(waitUntil([this] { return stored("number").has_value(); }));
            }
            ::usleep(static_cast<useconds_t>(500 + round * 7919 % 5000));
        }
        post(kFVEPrefsDidChangeNotification);
        pane->prefsChanged(Notification(kFVEPrefsDidChangeNotification, nullptr, {}));
        // A torn file would read as nothing at all, and nothing means "on".
        ASSERT_EQ(pane->enableTouchDisplay()->state(), 0) << "round " << round;
    }
    EXPECT_NE(stored("number"), std::nullopt) << "nobody wrote anything";
    EXPECT_EQ(stored(kEnableTouchDisplayOption), PropertyList(false));
}

#if defined(__SANITIZE_ADDRESS__)
constexpr int slowness = 3; // beside other tests, which are as slow
#else
constexpr int slowness = 1;
#endif
constexpr int writers = 4;
constexpr int writes = 500;

std::string keyOf(int writer, int number)
{
    return "w" + std::to_string(writer) + "." + std::to_string(number);
}

void writeAll(FilePreferences& preferences, int writer)
{
    for (int number = 0; number < writes; ++number) {
        preferences.setAppValue(keyOf(writer, number), number, kApplicationID);
        for (int attempt = 0; !preferences.appSynchronize(kApplicationID); ++attempt) {
            ASSERT_LT(attempt, 5000 * slowness);
            ::usleep(1000);
        }
    }
}

TEST_F(PaneDiskFaults, TwoPanelsAndFourWritersAtOnceLoseNoUpdate)
{
    load();
    show();
    turnOn();
    const auto host = start(
        {FARVIEW_BINARY_DIR "/farview-preferences", "--pane", FARVIEW_PANE_BUNDLE}, "host.log");
    std::vector<std::unique_ptr<ForkedProcess>> processes;
    for (int writer = 0; writer < writers; ++writer)
        processes.push_back(std::make_unique<ForkedProcess>(
            [this, writer] { writeAll(*anotherProgram(publisherLog), writer); }));
    // The user goes on clicking meanwhile, and the other panel follows.
    bool touch = preferences().enableTouchDisplay();
    const auto last = keyOf(0, writes - 1);
    const auto goesOn = [&] {
        touch = !touch;
        preferences().setEnableTouchDisplay(touch);
        EXPECT_EQ(preferences().enableTouchDisplay(), touch);
        return stored(last).has_value();
    };
    // Four seconds usually; sanitizers make a minute of it.
    EXPECT_TRUE(waitUntil(goesOn, seconds(150) * slowness));
    for (const auto& process : processes)
        EXPECT_EQ(process->wait(), 0);
    // Where the others left no gap for a second, the last click still waits for its write.
    preferences().synchronize();

    const auto all = anotherProgram(publisherLog);
    int lost = 0;
    for (int writer = 0; writer < writers; ++writer) {
        for (int number = 0; number < writes; ++number)
            lost += all->copyAppValue(keyOf(writer, number), kApplicationID) ? 0 : 1;
    }
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(stored(kEnableTouchDisplayOption), PropertyList(touch));
    EXPECT_EQ(switchState(), 1);
    EXPECT_TRUE(host->isRunning()) << text("host.log");
    EXPECT_EQ(servers().size(), 1u) << "two panels, one server";
    host->sendSignal(SIGTERM);
    EXPECT_TRUE(host->waitForEnd()) << text("host.log");
}

} // namespace
} // namespace farview
