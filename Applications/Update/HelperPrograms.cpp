#include "Applications/Update/HelperPrograms.h"

#include "Common/FVEConstants.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"
#include "Platform/Posix/FolderListing.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds pause = 50ms;
constexpr std::chrono::milliseconds longestWait = 10s;

bool isRunning(pid_t process) { return ::kill(process, 0) == 0; }

std::vector<pid_t> processesOf(const std::string& program)
{
    std::vector<pid_t> processes;
    for (const auto& name : foldersInFolder("/proc")) {
        std::error_code error;
        if (std::filesystem::read_symlink("/proc/" + name + "/exe", error) == program)
            processes.push_back(std::atoi(name.c_str()));
    }
    return processes;
}

} // namespace

HelperPrograms::HelperPrograms(std::string bundle) : mBundle(std::move(bundle))
{
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { startWhenEnded(); });
}

void HelperPrograms::note()
{
    for (const std::string name : {kFVEScreenServerApplicationName, kFVEMenuExtraApplicationName}) {
        const auto program =
            mBundle + "/Contents/Resources/" + name + ".app/Contents/Linux/" + name;
        const auto processes = processesOf(program);
        mProcesses.insert(mProcesses.end(), processes.begin(), processes.end());
        if (!processes.empty())
            mPrograms.push_back(program);
    }
}

void HelperPrograms::startAgain(std::function<void()> then)
{
    mThen = std::move(then);
    mWaiting.start();
    mTimer.start(pause);
    startWhenEnded();
}

void HelperPrograms::startWhenEnded()
{
    const bool someRun = std::any_of(mProcesses.begin(), mProcesses.end(), isRunning);
    if (someRun && !mWaiting.hasExpired(longestWait.count()))
        return;
    mTimer.stop();
    for (const auto& program : mPrograms)
        startDetached(QString::fromStdString(program), {});
    mThen();
}

} // namespace farview
