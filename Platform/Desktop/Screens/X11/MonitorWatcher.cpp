#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"

#include "Platform/Desktop/Screens/X11/MonitorRemoval.h"
#include "Platform/Desktop/Screens/X11/WindowKeeper.h"
#include "Platform/Desktop/Screens/X11/XTestInput.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

namespace farview
{
namespace
{

/// In a session of its own, with `input` to read from, deaf to signals. -1 when it cannot start.
pid_t spawn(const std::string& program, int input)
{
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_init(&files);
    sigset_t all;
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes, &all);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
    ::posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    auto name = program;
    std::array<char*, 2> arguments{name.data(), nullptr};
    pid_t process = -1;
    if (::posix_spawn(&process, name.c_str(), &files, &attributes, arguments.data(), environ) != 0)
        process = -1;
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    return process;
}

bool endsWell(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR)
            return false;
    }
    return status == 0;
}

/// Waits until the other end is closed. Whether it said something before.
bool endsWithAWord()
{
    bool hasWord = false;
    while (true) {
        char byte = 0;
        const auto count = ::read(STDIN_FILENO, &byte, 1);
        hasWord = hasWord || count > 0;
        if (count == 0 || (count < 0 && errno != EINTR))
            return hasWord;
    }
}

} // namespace

FileDescriptor startMonitorWatcher(const std::string& program)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    const FileDescriptor readingEnd(ends[0]);
    FileDescriptor writingEnd(ends[1]);
    const pid_t process = spawn(program, readingEnd.get());
    return process > 0 && endsWell(process) ? std::move(writingEnd) : FileDescriptor();
}

void sayThatAllIsReleased(const FileDescriptor& watcher) { writeAll(watcher.get(), "."); }

bool watchMonitors()
{
    if (const pid_t child = ::fork(); child != 0)
        return child > 0;
    const bool isReleased = endsWithAWord();
    const auto connection = connectX(nullptr);
    RandrServer server(connection.get());
    // The server notices the end of a program at its own time.
    for (int look = 0; look < 1000 && server.isUsable() && hasAnyOwner(server); ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (!isReleased)
        releaseAllOfXTest(connection.get());
    const bool isUndone = undoAbandonedMonitors(server);
    WindowKeeper windows(server, {}, true);
    // A window manager that is slow moves windows long after the monitor went.
    for (int look = 0; look < 10 && !hasAnyOwner(server) && windows.takeAbandonedBack(); ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return isUndone;
}

} // namespace farview
