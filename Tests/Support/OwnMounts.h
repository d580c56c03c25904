#pragma once

#include "Platform/Posix/FileDescriptor.h"
#include "Tests/Support/ForkedProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

namespace farview
{

inline void writeText(const char* path, const std::string& text) { std::ofstream(path) << text; }

/// Gives this process mounts of its own, as root or, where the machine allows it, as anyone.
inline bool hasOwnMounts()
{
    const auto user = std::to_string(::getuid());
    const auto group = std::to_string(::getgid());
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        writeText("/proc/self/uid_map", "0 " + user + " 1");
        writeText("/proc/self/setgroups", "deny");
        writeText("/proc/self/gid_map", "0 " + group + " 1");
    }
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// A small disk in memory.
inline bool mountDisk(const std::string& folder, const char* options)
{
    std::filesystem::create_directories(folder);
    return ::mount("none", folder.c_str(), "tmpfs", 0, options) == 0;
}

/// Runs the body in a process in which a small disk of its own lies at `folder`. Nothing of it is
/// left behind.
inline void withOwnDisk(const std::string& folder, const std::function<void()>& body)
{
    constexpr int noMounts = 77;
    ForkedProcess process([&] {
        if (!hasOwnMounts() || !mountDisk(folder, "size=65536"))
            ::_exit(noMounts);
        body();
    });
    const int status = process.wait();
    if (status == noMounts)
        GTEST_SKIP() << "this machine lets nobody mount a file system in a namespace";
    EXPECT_EQ(status, 0);
}

inline void setReadOnly(const std::string& folder, bool isReadOnly)
{
    const unsigned long flags = MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0);
    ASSERT_EQ(::mount("none", folder.c_str(), nullptr, flags, nullptr), 0);
}

/// Writes until nothing more fits.
inline void fillDisk(const std::string& path)
{
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const std::array<char, 512> block{};
    while (::write(file.get(), block.data(), block.size()) > 0) {
    }
}

} // namespace farview
