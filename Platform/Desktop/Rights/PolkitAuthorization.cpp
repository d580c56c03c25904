#include "Platform/Desktop/Rights/PolkitAuthorization.h"

#include "Platform/Desktop/Rights/PolkitQuestion.h"
#include "Platform/Posix/Processes/ToolTrust.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

namespace farview
{
namespace
{

using Status = Authorization::Status;

QString canonical(const URL& tool) { return QString::fromStdString(canonicalProgram(tool.path())); }

QString actionOf(const URL& tool) { return QFileInfo(canonical(tool)).fileName(); }

/// Calls the answer unless its target has gone.
std::function<void(Status)> answering(std::weak_ptr<void> target, Authorization::Answer then)
{
    return [target = std::move(target), then = std::move(then)](Status status) {
        if (const auto kept = target.lock())
            then(status);
    };
}

Status statusOfEnd(int exitCode, QProcess::ExitStatus exitStatus)
{
    constexpr int dismissed = 126;
    if (exitStatus != QProcess::NormalExit)
        return Status::toolExecuteFailure;
    if (exitCode == dismissed)
        return Status::canceled;
    return exitCode == 0 ? Status::success : Status::toolExecuteFailure;
}

/// What pkexec takes for suspicious in an environment is nothing that the tool needs.
void setBareEnvironment(QProcess& process)
{
    QProcessEnvironment bare;
    bare.insert(QStringLiteral("PATH"), QStringLiteral("/usr/sbin:/usr/bin:/sbin:/bin"));
    process.setProcessEnvironment(bare);
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

} // namespace

PolkitAuthorization::PolkitAuthorization(PolkitPlaces places) : mPlaces(std::move(places)) {}

PolkitAuthorization::~PolkitAuthorization()
{
    for (auto* process : findChildren<QProcess*>()) {
        // Destroying it would wait for the tool's end.
        process->disconnect();
        process->setParent(QCoreApplication::instance());
        connect(process, &QProcess::finished, process, &QObject::deleteLater);
    }
}

Authorization::Obstacle PolkitAuthorization::obstacleOf(const URL& tool)
{
    const std::string path = canonicalProgram(tool.path());
    if (path.empty())
        return {Obstacle::Kind::missing, tool.path()};
    const std::string changeable = firstChangeableByOthers(partsOfPath(path));
    if (!changeable.empty())
        return {Obstacle::Kind::changeableByOthers, changeable};
    return {};
}

void PolkitAuthorization::foresee(const URL& tool, std::weak_ptr<void> target, Answer then)
{
    auto* question = new PolkitQuestion(mPlaces.busAddress, this);
    question->foresee(actionOf(tool), answering(std::move(target), std::move(then)));
}

void PolkitAuthorization::create(const std::string& /*right*/, const URL& tool,
                                 std::weak_ptr<void> target, Answer then)
{
    // There is one right, to run the helpers as administrator; polkit knows it by the tool.
    auto* question = new PolkitQuestion(mPlaces.busAddress, this);
    question->ask(actionOf(tool), answering(std::move(target), std::move(then)));
}

void PolkitAuthorization::executeWithPrivileges(const URL& tool, std::weak_ptr<void> target,
                                                Answer then)
{
    const auto answer = answering(std::move(target), std::move(then));
    if (obstacleOf(tool).kind != Obstacle::Kind::none) {
        QTimer::singleShot(0, this, [answer] { answer(Status::toolExecuteFailure); });
        return;
    }
    auto* process = new QProcess(this);
    setBareEnvironment(*process);
    connect(process, &QProcess::finished, this,
            [process, answer](int exitCode, QProcess::ExitStatus exitStatus) {
                process->deleteLater();
                answer(statusOfEnd(exitCode, exitStatus));
            });
    connect(process, &QProcess::errorOccurred, this,
            [process, answer](QProcess::ProcessError error) {
                if (error != QProcess::FailedToStart)
                    return;
                process->deleteLater();
                answer(Status::toolExecuteFailure);
            });
    process->start(mPlaces.pkexec, {QStringLiteral("--disable-internal-agent"), canonical(tool)});
}

} // namespace farview
