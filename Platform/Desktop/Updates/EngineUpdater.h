#pragma once

#include "Platform/Updater.h"

#include <QPointer>
#include <QString>

#include <map>
#include <memory>
#include <string>

namespace farview
{

class Log;
class UpdateEngineRun;
struct UpdateReport;

/// Where the programs are that an update needs.
struct UpdatePlaces {
    QString bundle;
    QString engine; ///< finds, fetches, verifies and installs
    QString host;   ///< shows panes: with it the engine tries the new version
};

/// An updater whose work is done by the engine that lies in the bundle, a process of its own. A
/// search runs it to its end; an update runs it again and holds it until the user has decided.
class EngineUpdater final : public Updater
{
public:
    /// `log` is used, not owned.
    EngineUpdater(UpdatePlaces places, Log& log);
    ~EngineUpdater() override;

    bool automaticallyChecksForUpdates() const override { return mChecks; }
    void setAutomaticallyChecksForUpdates(bool flag) override { mChecks = flag; }
    void setDelegate(std::weak_ptr<UpdaterDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    const UpdateStatus& status() const override { return mStatus; }
    void checkForUpdates() override;
    void downloadUpdate() override;
    void installUpdate() override;
    void cancel() override;

    /// Has nothing to do with the engine any more; an installation goes on.
    void letGoOfEngine();

private:
    using Stage = UpdateStatus::Stage;

    void run(const QStringList& more);
    void take(const UpdateReport& report);
    void takeFound(const UpdateStatus& found);
    void takeReady(const UpdateStatus& ready);
    void reach(UpdateStatus status);
    void reach(Stage stage);
    void fail(UpdateProblem problem, const std::string& detail);

    UpdatePlaces mPlaces;
    Log& mLog;
    std::weak_ptr<UpdaterDelegate> mDelegate;
    UpdateStatus mStatus;
    QPointer<UpdateEngineRun> mRun;
    bool mIsDownloadOrdered = false;
    bool mChecks = false;
};

/// The updaters of this process, each with the engine of its bundle.
class EngineUpdaters final : public Updaters
{
public:
    /// `host` is the program that shows panes. `log` is used, not owned.
    EngineUpdaters(QString host, Log& log) : mHost(std::move(host)), mLog(log) {}
    /// Whoever still holds one of its updaters holds an idle one from now on.
    ~EngineUpdaters() override;

    std::shared_ptr<Updater> updaterForBundle(const std::string& bundlePath) override;

private:
    QString mHost;
    Log& mLog;
    std::map<std::string, std::shared_ptr<EngineUpdater>> mUpdaters;
};

} // namespace farview
