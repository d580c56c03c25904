#include "Tests/Support/ChildProcess.h"

#include "Tests/Support/WaitUntil.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace
{

[[noreturn]] void becomeProgram(const std::vector<std::string>& arguments,
                                const ChildProcess::Environment& environment, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(126);
    for (const auto& [name, value] : environment)
        ::setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> pointers;
    for (const auto& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    ::execvp(pointers[0], pointers.data());
    ::_exit(127);
}

std::string firstLine(const std::string& file)
{
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

void collectBelow(pid_t ancestor, std::vector<OtherProcess>& found)
{
    const auto tasks = "/proc/" + std::to_string(ancestor) + "/task/";
    std::ifstream children(tasks + std::to_string(ancestor) + "/children");
    for (pid_t child; children >> child;) {
        if (isProcessRunning(child))
            found.push_back({child, firstLine("/proc/" + std::to_string(child) + "/comm")});
        collectBelow(child, found);
    }
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const Environment& environment)
{
    const pid_t parent = ::getpid();
    mPid = ::fork();
    if (mPid < 0)
        throw std::runtime_error("cannot fork");
    if (mPid == 0)
        becomeProgram(arguments, environment, parent);
}

ChildProcess::~ChildProcess() { kill(); }

bool ChildProcess::isRunning()
{
    int status = 0;
    if (!mStatus && ::waitpid(mPid, &status, WNOHANG) == mPid)
        mStatus = status;
    return !mStatus;
}

void ChildProcess::sendSignal(int number) const
{
    if (!mStatus)
        ::kill(mPid, number);
}

std::optional<int> ChildProcess::waitForEnd(std::chrono::milliseconds limit)
{
    waitUntil([this] { return !isRunning(); }, limit);
    return mStatus;
}

void ChildProcess::kill()
{
    if (!isRunning())
        return;
    sendSignal(SIGKILL);
    int status = 0;
    ::waitpid(mPid, &status, 0);
    mStatus = status;
}

std::vector<OtherProcess> processesBelow(pid_t ancestor)
{
    std::vector<OtherProcess> found;
    collectBelow(ancestor, found);
    return found;
}

bool isProcessRunning(pid_t pid)
{
    const std::string line = firstLine("/proc/" + std::to_string(pid) + "/stat");
    const auto name = line.rfind(')');
    return name != std::string::npos && line.compare(name, 3, ") Z") != 0;
}

OrphanCollector::OrphanCollector(std::string shortName) : mShortName(std::move(shortName))
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

OrphanCollector::~OrphanCollector()
{
    for (const pid_t pid : running()) {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

std::vector<pid_t> OrphanCollector::running() const
{
    std::vector<pid_t> found;
    for (const auto& each : processesBelow(::getpid())) {
        if (each.shortName == mShortName)
            found.push_back(each.pid);
    }
    return found;
}
