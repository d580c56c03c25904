#include "Platform/Desktop/Updates/UpdateEngineRun.h"

#include <QTimer>

#include <chrono>
#include <set>
#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds patienceWithGivingUp{10};
constexpr qsizetype chunk = 64 * 1024;

/// Every run of this process. One that goes on when the process ends is not deleted, because that
/// would end its engine; from here it can still be reached, so that it does not count as lost.
std::set<UpdateEngineRun*>& allRuns()
{
    static auto* runs = new std::set<UpdateEngineRun*>();
    return *runs;
}

QString howItEnded(int exitCode, QProcess::ExitStatus exitStatus)
{
    return exitStatus == QProcess::NormalExit
               ? QStringLiteral("it ended with status %1").arg(exitCode)
               : QStringLiteral("it crashed");
}

} // namespace

UpdateEngineRun::UpdateEngineRun(const QString& program, const QStringList& arguments)
{
    allRuns().insert(this);
    mProcess.setWorkingDirectory(QStringLiteral("/"));
    mProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // What ends the panel's terminal or its process group must not end an installation.
    mProcess.setChildProcessModifier([] { ::setsid(); });
    connect(&mProcess, &QProcess::readyReadStandardOutput, this, &UpdateEngineRun::read);
    connect(&mProcess, &QProcess::finished, this,
            [this](int exitCode, QProcess::ExitStatus exitStatus) {
                read();
                end(howItEnded(exitCode, exitStatus));
            });
    connect(&mProcess, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(QStringLiteral("it cannot be started: ") + mProcess.errorString());
    });
    mProcess.start(program, arguments);
}

UpdateEngineRun::~UpdateEngineRun() { allRuns().erase(this); }

void UpdateEngineRun::send(const char* word)
{
    mProcess.write(word);
    mProcess.write("\n");
}

void UpdateEngineRun::sendInstall()
{
    mIsInstalling = true;
    send("install");
}

void UpdateEngineRun::letGo()
{
    mIsLetGo = true;
    disconnect(this, nullptr, nullptr, nullptr);
    if (mIsOver)
        return deleteLater();
    if (mIsInstalling)
        return;
    mProcess.terminate();
    mProcess.closeWriteChannel();
    QTimer::singleShot(patienceWithGivingUp, &mProcess, &QProcess::kill);
}

void UpdateEngineRun::read()
{
    while (mProcess.bytesAvailable() > 0) {
        mLine += mProcess.read(chunk);
        for (auto at = mLine.indexOf('\n'); at >= 0; at = mLine.indexOf('\n')) {
            const QByteArray line = mLine.left(at);
            mLine.remove(0, at + 1);
            if (!mIsLetGo)
                Q_EMIT saidLine(line);
        }
        if (mLine.size() > longestLine)
            refuseLongLine();
    }
}

void UpdateEngineRun::refuseLongLine()
{
    mLine.clear();
    // Whatever says that is not the engine; but nobody interrupts an installation.
    if (!mIsInstalling)
        mProcess.kill();
}

void UpdateEngineRun::end(const QString& how)
{
    if (std::exchange(mIsOver, true))
        return;
    if (mIsLetGo)
        deleteLater();
    else
        Q_EMIT ended(how);
}

} // namespace farview
