#include "Applications/Update/TrialRun.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>

#include <chrono>
#include <csignal>
#include <sys/prctl.h>

#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds longestTrial{60};
constexpr std::size_t longestComplaint = 1000;

/// Both programs run in the folder, so the name of the socket is short however long the path is.
constexpr auto busAddress = "unix:path=bus";
constexpr auto busConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

QString text(const std::string& value) { return QString::fromStdString(value); }

UpdateFailure unfit(const std::string& complaint) { return {UpdateProblem::unfit, complaint}; }

UpdateFailure withoutBus() { return {UpdateProblem::internal, "dbus-daemon cannot be run"}; }

QProcessEnvironment ownEnvironment(const QString& folder)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_ID", "XDG_ACTIVATION_TOKEN",
                             "DESKTOP_STARTUP_ID"})
        environment.remove(QLatin1String(name));
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                             "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), folder + u'/' + QLatin1String(name));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QLatin1String(busAddress));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    return environment;
}

bool prepare(const QString& folder)
{
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    const QString runtime = folder + QStringLiteral("/XDG_RUNTIME_DIR");
    QFile configuration(folder + QStringLiteral("/bus.conf"));
    return QDir().mkpath(folder + QStringLiteral("/HOME")) && QDir().mkpath(runtime) &&
           QFile::setPermissions(runtime, ownerOnly) && configuration.open(QIODevice::WriteOnly) &&
           configuration.write(busConfiguration) > 0;
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
    mHostPath = QDir::current().absoluteFilePath(text(host));
    mBundle = text(bundle);
    mFolder = text(folder);
    mThen = std::move(then);
    mIsOver = false;
    mLimit.start(longestTrial);
    if (!prepare(mFolder))
        return end(UpdateFailure{UpdateProblem::write, folder});
    startBus();
}

std::unique_ptr<QProcess> TrialRun::newProcess()
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(ownEnvironment(mFolder));
    process->setWorkingDirectory(mFolder);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    return process;
}

void TrialRun::startBus()
{
    mBus = newProcess();
    QProcess* bus = mBus.get();
    bus->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(bus, &QProcess::errorOccurred, bus, [this] { end(withoutBus()); });
    QObject::connect(bus, &QProcess::finished, bus, [this] { settle(); });
    // It prints its address once it can be used.
    QObject::connect(bus, &QProcess::readyReadStandardOutput, bus, [this] {
        if (!mHost && !mIsOver)
            startHost();
    });
    bus->start(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                QStringLiteral("--config-file=bus.conf"), QStringLiteral("--print-address")});
}

void TrialRun::startHost()
{
    mHost = newProcess();
    QProcess* host = mHost.get();
    host->setProcessChannelMode(QProcess::MergedChannels);
    QObject::connect(host, &QProcess::finished, host, [this] { conclude(); });
    QObject::connect(host, &QProcess::errorOccurred, host, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(UpdateFailure{UpdateProblem::internal, mHostPath.toStdString() + " cannot be run"});
    });
    host->start(mHostPath, {QStringLiteral("--smoke-test"), QStringLiteral("--pane"), mBundle});
}

void TrialRun::conclude()
{
    if (mHost->exitStatus() == QProcess::NormalExit && mHost->exitCode() == 0)
        return end(std::nullopt);
    const auto printed = mHost->readAll().toStdString();
    const std::string how = mHost->exitStatus() == QProcess::NormalExit
                                ? "exit status " + std::to_string(mHost->exitCode())
                                : "it crashed";
    end(unfit(how + ": " + printableText(printed, longestComplaint)));
}

/// The end is told only when no process can write to the folder any more.
void TrialRun::end(std::optional<UpdateFailure> failure)
{
    if (!mIsOver) {
        mIsOver = true;
        mFailure = std::move(failure);
        mLimit.stop();
        for (auto* process : {mHost.get(), mBus.get()}) {
            if (process)
                process->kill();
        }
    }
    settle();
}

void TrialRun::settle()
{
    if (!mIsOver)
        return end(withoutBus());
    const auto isRunning = [](const auto& process) {
        return process && process->state() != QProcess::NotRunning;
    };
    if (isRunning(mHost) || isRunning(mBus))
        return;
    const Then then = std::exchange(mThen, nullptr);
    if (then)
        then(mFailure);
}

void TrialRun::cancel() { end(UpdateFailure{UpdateProblem::internal, "cancelled"}); }

void TrialRun::stop()
{
    mThen = nullptr;
    mIsOver = true;
    mLimit.stop();
    for (auto* process : {&mHost, &mBus}) {
        if (!*process)
            continue;
        (*process)->disconnect();
        (*process)->kill();
        // This may run within one of the process's own signals.
        process->release()->deleteLater();
    }
}

} // namespace farview
