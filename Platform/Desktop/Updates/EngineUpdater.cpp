#include "Platform/Desktop/Updates/EngineUpdater.h"

#include "Platform/Desktop/Updates/UpdateEngineRun.h"
#include "Platform/Desktop/Updates/UpdateReport.h"
#include "Platform/Log.h"
#include "Platform/Types/UpdateProblem.h"

#include <utility>

namespace farview
{

EngineUpdater::EngineUpdater(UpdatePlaces places, Log& log) : mPlaces(std::move(places)), mLog(log)
{
}

EngineUpdater::~EngineUpdater() { letGoOfEngine(); }

void EngineUpdater::letGoOfEngine()
{
    if (auto* run = std::exchange(mRun, nullptr).data())
        run->letGo();
}

void EngineUpdater::checkForUpdates()
{
    if (isUnderWay(mStatus.stage))
        return;
    UpdateStatus status;
    status.stage = Stage::checking;
    run({QStringLiteral("--check-only")});
    reach(std::move(status));
}

void EngineUpdater::downloadUpdate()
{
    if (mStatus.stage != Stage::found)
        return;
    mIsDownloadOrdered = false;
    run({});
    reach(Stage::downloading);
}

void EngineUpdater::installUpdate()
{
    if (mStatus.stage != Stage::ready || !mRun)
        return;
    PendingUpdate item(mStatus.version);
    if (const auto delegate = mDelegate.lock())
        delegate->willInstallUpdate(this, &item);
    mRun->sendInstall();
    reach(Stage::installing);
}

void EngineUpdater::cancel()
{
    if (!isUnderWay(mStatus.stage) || mStatus.stage == Stage::installing)
        return;
    letGoOfEngine();
    reach(Stage::cancelled);
}

void EngineUpdater::run(const QStringList& more)
{
    letGoOfEngine();
    const QStringList arguments{QStringLiteral("--bundle"), mPlaces.bundle,
                                QStringLiteral("--host"), mPlaces.host};
    auto* run = new UpdateEngineRun(mPlaces.engine, arguments + more);
    mRun = run;
    QObject::connect(run, &UpdateEngineRun::saidLine, run, [this](const QByteArray& line) {
        if (const auto report = readUpdateReport(line))
            take(*report);
        else
            mLog.write(LogLevel::warning, "The update engine said something unknown");
    });
    QObject::connect(run, &UpdateEngineRun::ended, run, [this](const QString& how) {
        letGoOfEngine();
        if (isUnderWay(mStatus.stage))
            fail(UpdateProblem::internal, how.toStdString());
    });
}

/// Whatever does not fit what is going on is as if it had not been said.
void EngineUpdater::take(const UpdateReport& report)
{
    const Stage now = mStatus.stage;
    switch (report.status.stage) {
    case Stage::current:
        if (now == Stage::checking || now == Stage::downloading)
            reach(report.status);
        break;
    case Stage::found:
        takeFound(report.status);
        break;
    case Stage::downloading:
        if (now == Stage::downloading && mIsDownloadOrdered) {
            mStatus.received = report.status.received;
            mStatus.length = report.status.length;
            reach(Stage::downloading);
        }
        break;
    case Stage::verifying:
        if (now == Stage::downloading && mIsDownloadOrdered)
            reach(Stage::verifying);
        break;
    case Stage::ready:
        takeReady(report.status);
        break;
    case Stage::installed:
        if (now == Stage::installing)
            reach(Stage::installed);
        break;
    case Stage::failed:
        if (isUnderWay(now))
            fail(report.status.problem, report.detail);
        break;
    default:
        break;
    }
}

void EngineUpdater::takeFound(const UpdateStatus& found)
{
    if (mStatus.stage == Stage::checking)
        return reach(found);
    if (mStatus.stage != Stage::downloading || mIsDownloadOrdered)
        return;
    if (found.version == mStatus.version) {
        mIsDownloadOrdered = true;
        mRun->send("download");
        return;
    }
    // The user agreed to another one.
    letGoOfEngine();
    reach(found);
}

void EngineUpdater::takeReady(const UpdateStatus& ready)
{
    if (mStatus.stage != Stage::verifying)
        return;
    if (ready.version == mStatus.version)
        return reach(Stage::ready);
    letGoOfEngine();
    fail(UpdateProblem::wrongVersion, "it is ready with " + ready.version);
}

void EngineUpdater::reach(Stage stage)
{
    auto status = mStatus;
    status.stage = stage;
    reach(std::move(status));
}

void EngineUpdater::reach(UpdateStatus status)
{
    mStatus = std::move(status);
    if (const auto delegate = mDelegate.lock())
        delegate->didChangeStatus(*this);
}

void EngineUpdater::fail(UpdateProblem problem, const std::string& detail)
{
    mLog.write(LogLevel::warning, "No update (" + std::string(wordOf(problem)) + "): " + detail);
    mStatus.problem = problem;
    reach(Stage::failed);
}

EngineUpdaters::~EngineUpdaters()
{
    for (const auto& [bundle, updater] : mUpdaters)
        updater->letGoOfEngine();
}

std::shared_ptr<Updater> EngineUpdaters::updaterForBundle(const std::string& bundlePath)
{
    auto& updater = mUpdaters[bundlePath];
    if (!updater) {
        const QString bundle = QString::fromStdString(bundlePath);
        updater = std::make_shared<EngineUpdater>(
            UpdatePlaces{bundle, bundle + QStringLiteral("/Contents/Frameworks/farview-update"),
                         mHost},
            mLog);
    }
    return updater;
}

} // namespace farview
