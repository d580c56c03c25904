#include "Applications/Update/HelperPrograms.h"

#include "Common/FVEConstants.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"
#include "Platform/Posix/FolderListing.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <utility>

namespace farview
{
namespace
{

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds pause = 50ms;
constexpr std::chrono::milliseconds longestWait = 10s;

/// Empty when the process has ended, also while its parent has not noticed yet.
std::string programOf(const std::string& process)
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/" + process + "/exe", error).string();
}

bool isRunning(const std::string& process) { return !programOf(process).empty(); }

} // namespace

HelperPrograms::HelperPrograms(std::string bundle) : mBundle(std::move(bundle))
{
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { startWhenEnded(); });
}

void HelperPrograms::note()
{
    const auto all = foldersInFolder("/proc");
    for (const std::string name : {kFVEScreenServerApplicationName, kFVEMenuExtraApplicationName}) {
        const auto program =
            mBundle + "/Contents/Resources/" + name + ".app/Contents/Linux/" + name;
        const auto known = mProcesses.size();
        std::copy_if(all.begin(), all.end(), std::back_inserter(mProcesses),
                     [&](const auto& process) { return programOf(process) == program; });
        if (mProcesses.size() > known)
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
