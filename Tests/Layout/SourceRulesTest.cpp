#include "Tests/Layout/SourceTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

namespace
{

std::string withoutComment(const std::string& line) { return line.substr(0, line.find("//")); }

bool mentions(const SourceFile& file, const std::regex& pattern)
{
    return std::any_of(file.lines.begin(), file.lines.end(), [&](const auto& line) {
        return std::regex_search(withoutComment(line), pattern);
    });
}

// Functions whose fixed name leaves no parameter for the platform live in these files; what
// composes a program installs it.
const std::set<std::string> filesThatFindThePlatform = {
    "Common/FVELogging.cpp",
    "Common/FVEPreferences.cpp",
    "Common/FVEUpdater.cpp",
    "Common/GetPID.cpp",
    "Common/NSApplication_Additions.cpp",
    "Common/NSString_Additions.cpp",
    "Common/NSURL_Additions.cpp",
    "Common/Registry/QLNRegistryExplorer.cpp",
    "Platform/Platform.cpp",
    "Source/FVEDisplay.cpp",
};

TEST(SourceRules, OnlyTheNamedFilesFindThePlatformByThemselves)
{
    const std::regex call(R"(Platform::(current|generation)\s*\()");
    for (const auto& file : productSources()) {
        if (mentions(file, call)) {
            EXPECT_TRUE(filesThatFindThePlatform.contains(file.path))
                << file.path << " should take the interfaces it needs in its constructor";
        }
    }
}

// The toolkit offers no drag without a loop of its own. This one is entered with nothing of ours
// below it that could be gone when it returns (docs/decisions/130).
const std::string dragLoop =
    "Controls/Qt/Table/RunningDrag.cpp:        mDrag->exec(Qt::MoveAction);";

TEST(SourceRules, NoLoopRunsInsideALoop)
{
    std::vector<std::string> loops;
    const std::regex nested(R"((->|\.)exec\s*\(|processEvents\s*\(|QEventLoop|waitFor\w+\s*\()");
    const std::regex application(
        R"((application|app|QApplication|QCoreApplication)(\.|->|::)exec\s*\()");
    for (const auto& file : productSources()) {
        for (const auto& line : file.lines) {
            const auto code = withoutComment(line);
            if (std::regex_search(code, nested) && !std::regex_search(code, application))
                loops.push_back(file.path + ":" + code);
        }
    }
    EXPECT_EQ(loops, std::vector<std::string>{dragLoop});
}

// What waits all the same, and why nobody sees it.
const std::vector<std::string> waits = {
    // The diagnosis ends when its main thread hangs; this is the thread that watches.
    "Applications/Doctor/HangWatchdog.cpp:    if (mChanged.wait_for(lock, mLimit, [this] { return "
    "mIsOver; }))",
    // The diagnosis asks whether the buses answer before it has a window, or none at all.
    "Platform/Desktop/Bus/BusHandshake.cpp:        const int count = ::poll(&waiting, 1, "
    "std::max(0, static_cast<int>(left.count())));",
    // A monitor is taken away by its own thread, for half a second at most where the X server
    // stands
    // still; after that the connection is cut.
    "Platform/Desktop/Screens/X11/MonitorThread.cpp:        if (!mEnded.wait_for(lock, patience, "
    "[this] { return mHasEnded; }))",
    // sway is waited for at the end of the program, for a quarter of a second at most: it reads
    // nothing of a connection that has ended.
    "Platform/Desktop/Screens/Wlroots/SwayConnection.cpp:    if (left.count() <= 0 || "
    "::poll(&file, 1, static_cast<int>(left.count())) <= 0)",
    // The watcher is a process of its own, and the monitor has a thread of its own.
    "Platform/Desktop/Screens/X11/MonitorWatcher.cpp:        "
    "std::this_thread::sleep_for(std::chrono::milliseconds(2));",
    "Platform/Desktop/Screens/X11/ShownMonitor.cpp:    ::poll(files.data(), files.size(), "
    "longestWait());",
    // The window manager, after its maker's end and in that thread.
    "Platform/Desktop/Screens/X11/MonitorWatcher.cpp:        "
    "std::this_thread::sleep_for(std::chrono::milliseconds(100));",
    "Platform/Desktop/Screens/X11/WindowKeeper.cpp:        "
    "std::this_thread::sleep_for(milliseconds(5));",
    // Input has a thread of its own, which is waited for like the monitor's.
    "Platform/Desktop/Screens/X11/TypedText.cpp:    std::this_thread::sleep_until(typed + "
    "timeToUnderstand);",
    "Platform/Desktop/Screens/X11/X11InputSink.cpp:    if "
    "(mHasEnded.get_future().wait_for(patience) == std::future_status::timeout)",
    "Platform/Desktop/Screens/X11/X11InputSink.cpp:        ::poll(files.data(), files.size(), "
    "input.millisecondsLeft());",
    // A picture has a thread of its own.
    "Applications/ScreenCapture/PictureThread.cpp:        mChanged.wait_until(lock, stop, "
    "clockTime(mNextRefinement), hasNews);",
    "Applications/ScreenCapture/PictureThread.cpp:    mChanged.wait_until(lock, stop, "
    "clockTime(mPacing.nextBeat()), mayBegin);",
    // An X server is asked by the diagnosis alone, for half a second at most.
    "Platform/Desktop/Screens/X11/RandrConnection.cpp:        return ended.wait_for(lock, limit, "
    "[this] { return isOver; });",
    // Helpers without a window wait for other writers; programs with a loop do at their end.
    "Platform/Posix/Settings/LockFile.cpp:        std::this_thread::sleep_for(std::min(pause, "
    "left));",
};

/// Calls that wait for somebody's answer. The library asks the bus for the owner of a service that
/// is named in a connection to its signals, and waits for it, unless that is the bus itself.
const std::regex blockingCall(
    R"(QDBus::Block|QDBusInterface|interface\(\)->|registerService\s*\(|isServiceRegistered)"
    R"(|([bB]us|[cC]onnection)(\(\))?(\.|->)call\s*\()"
    R"(|[cC]onnection(\(\))?(\.|->)connect\((?!\s*$|QString\(\)|mOwner|QStringLiteral\("org\.freedesktop\.DBus"\)))"
    R"(|sleep_(for|until)\s*\(|(^|[^a-z])(u|nano|m)?sleep\s*\(|wait_(for|until)\s*\(|LOCK_EX\))"
    R"(|(^|[^a-zA-Z])::poll\s*\((?!.*, 0\))|QProcess::execute|(^|[^a-zA-Z])system\s*\()");

TEST(SourceRules, NothingWaitsForAnAnswerOnTheMainThread)
{
    std::vector<std::string> found;
    for (const auto& file : productSources()) {
        for (const auto& line : file.lines) {
            if (std::regex_search(withoutComment(line), blockingCall))
                found.push_back(file.path + ":" + line);
        }
    }
    EXPECT_THAT(found, testing::UnorderedElementsAreArray(waits));
}

TEST(SourceRules, ABlockingCallIsFound)
{
    for (const char* line :
         {"bus.call(message, QDBus::Block, 250);", "mBus.connection().call(message);",
          "bus.registerService(name);", "connection.interface()->servicePid(name);",
          "mConnection->connect(serviceName, path, interface, signal, this, SLOT(heard()));",
          "std::this_thread::sleep_for(pause);", "::usleep(1000);", "ended.wait_for(lock, limit);",
          "::flock(file, LOCK_EX);", "::poll(&waiting, 1, 500);"})
        EXPECT_TRUE(std::regex_search(line, blockingCall)) << line;
    for (const char* line :
         {"mBus.connection().asyncCall(message);", "mBus.ask(message, this, use);",
          "mConnection->connect(QString(), path, interface, signal, this, SLOT(heard()));",
          "::flock(file, LOCK_EX | LOCK_NB)", "::poll(&reader, 1, 0)", "mLink.call(request);"})
        EXPECT_FALSE(std::regex_search(line, blockingCall)) << line;
}

TEST(SourceRules, ThePlatformIsAskedAboutOnlyInItsOwnRooms)
{
    const std::regex condition(
        R"(^\s*#\s*(if|ifdef|ifndef|elif).*(__linux__|__unix__|_WIN32|__APPLE__|Q_OS_))");
    for (const auto& file : productSources()) {
        if (!file.path.starts_with("Platform/")) {
            EXPECT_FALSE(mentions(file, condition)) << file.path;
        }
    }
}

TEST(SourceRules, NoProductIsBuiltWithALinkInClear)
{
    const std::filesystem::path root = FARVIEW_SOURCE_DIR;
    std::vector<std::string> builders;
    for (auto entry = std::filesystem::recursive_directory_iterator(root);
         entry != std::filesystem::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().filename();
        if (name.starts_with("build") || name == ".git")
            entry.disable_recursion_pending();
        else if (name.starts_with("CMake") || name.ends_with(".cmake")) {
            std::ifstream stream(entry->path());
            const std::string text(std::istreambuf_iterator<char>(stream), {});
            if (text.find("IN_CLEAR") != std::string::npos)
                builders.push_back(std::filesystem::relative(entry->path(), root));
        }
    }
    EXPECT_THAT(builders, testing::ElementsAre("Benchmarks/CMakeLists.txt"));
}

TEST(SourceRules, ASourceStaysReadableInOneSitting)
{
    for (const auto& file : productSources()) {
        const std::size_t limit = file.path.ends_with(".h") ? 200 : 400;
        EXPECT_LE(file.lines.size(), limit) << file.path;
    }
}

} // namespace
