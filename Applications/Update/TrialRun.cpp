#include "Applications/Update/TrialRun.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <QDir>
#include <QProcessEnvironment>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds longestTrial{60};
constexpr std::size_t longestComplaint = 1000;

QString text(const std::string& value) { return QString::fromStdString(value); }

UpdateFailure unfit(const std::string& complaint) { return {UpdateReason::unfit, complaint}; }

QProcessEnvironment ownEnvironment(const QString& folder)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                             "XDG_SESSION_ID", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
        environment.remove(QLatin1String(name));
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                             "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), folder + u'/' + QLatin1String(name));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    return environment;
}

bool makeFolders(const QString& folder)
{
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    const QString runtime = folder + QStringLiteral("/XDG_RUNTIME_DIR");
    return QDir().mkpath(folder + QStringLiteral("/HOME")) && QDir().mkpath(runtime) &&
           QFile::setPermissions(runtime, ownerOnly);
}

/// In the process that becomes the bus's: a group of its own, which ends with this program.
void standAlone()
{
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

} // namespace

TrialRun::TrialRun()
{
    mLimit.setSingleShot(true);
    QObject::connect(&mLimit, &QTimer::timeout, &mLimit, [this] { end(unfit("it does not end")); });
}

TrialRun::~TrialRun() { stop(); }

void TrialRun::start(const std::string& host, const std::string& bundle, const std::string& folder,
                     Then then)
{
    stop();
    mThen = std::move(then);
    mProcess = std::make_unique<QProcess>();
    QProcess* process = mProcess.get();
    QObject::connect(process, &QProcess::finished, process, [this] { conclude(); });
    QObject::connect(process, &QProcess::errorOccurred, process, [this](auto error) {
        if (error == QProcess::FailedToStart)
            end(UpdateFailure{UpdateReason::internal, "dbus-run-session cannot be run"});
    });
    makeFolders(text(folder));
    process->setProcessEnvironment(ownEnvironment(text(folder)));
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setChildProcessModifier(standAlone);
    mLimit.start(longestTrial);
    process->start(QStringLiteral("dbus-run-session"),
                   {QStringLiteral("--"), text(host), QStringLiteral("--smoke-test"),
                    QStringLiteral("--pane"), text(bundle)});
}

void TrialRun::conclude()
{
    if (mProcess->exitStatus() == QProcess::NormalExit && mProcess->exitCode() == 0)
        return end(std::nullopt);
    const auto printed = mProcess->readAll().toStdString();
    end(unfit("exit status " + std::to_string(mProcess->exitCode()) + ": " +
              printableText(printed, longestComplaint)));
}

void TrialRun::end(std::optional<UpdateFailure> failure)
{
    const Then then = std::exchange(mThen, nullptr);
    stop();
    if (then)
        then(std::move(failure));
}

void TrialRun::stop()
{
    mThen = nullptr;
    mLimit.stop();
    if (!mProcess)
        return;
    QProcess* process = mProcess.release();
    process->disconnect();
    // The bus and what runs on it are a group of their own.
    if (process->processId() > 0)
        ::kill(-static_cast<pid_t>(process->processId()), SIGKILL);
    process->deleteLater();
}

} // namespace farview
