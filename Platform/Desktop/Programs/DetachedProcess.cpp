#include "Platform/Desktop/Programs/DetachedProcess.h"

#include "Platform/Posix/FolderListing.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace farview
{
namespace
{

constexpr const char* startedDetachedMark = "FARVIEW_STARTED_DETACHED";

bool isOurs(const std::string& folder)
{
    struct stat status {
    };
    return ::stat(folder.c_str(), &status) == 0 && status.st_uid == ::geteuid();
}

/// Empty for one that has ended and waits for its parent.
std::string firstArgument(const std::string& folder)
{
    std::string argument;
    std::ifstream file(folder + "/cmdline");
    std::getline(file, argument, '\0');
    return argument;
}

} // namespace

qint64 startDetached(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("XDG_ACTIVATION_TOKEN"));
    environment.remove(QStringLiteral("DESKTOP_STARTUP_ID"));
    environment.insert(QString::fromLatin1(startedDetachedMark), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    qint64 pid = 0;
    return process.startDetached(&pid) ? pid : 0;
}

bool wasStartedDetached() { return qEnvironmentVariableIsSet(startedDetachedMark); }

bool isRunningDetached(const QString& program)
{
    const std::string path = program.toStdString();
    const auto processes = foldersInFolder("/proc");
    return std::any_of(processes.begin(), processes.end(), [&](const std::string& name) {
        const std::string folder = "/proc/" + name;
        return isOurs(folder) && firstArgument(folder) == path;
    });
}

} // namespace farview
