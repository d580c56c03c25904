#pragma once

#include "Platform/Bundle.h"
#include "Platform/Log.h"
#include "Platform/RunLoop.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <map>
#include <optional>
#include <string>

namespace farview
{

class SessionBus;

/// Starts application bundles, each at most once in the session.
///
/// An application that runs and stays is not started again; one that has been asked to quit is, and
/// so is one that has died. The running one is asked itself, over the bus, so a request to quit
/// that was posted before counts. Between the start and the moment the application takes its bus
/// name, further launches start nothing; it is asked as soon as it has its name.
class ApplicationLauncher : public QObject
{
    Q_OBJECT

public:
    /// The references must outlive this.
    ApplicationLauncher(SessionBus& bus, Bundles& bundles, const RunLoop& clock, Log& log);

    /// False when there is no application in that folder, or none that can be executed. The start
    /// itself may follow on a later turn.
    bool launch(const std::string& bundlePath);

private:
    struct Application {
        QString executable;
        QString busName;
    };
    /// A start that is under way.
    struct Start {
        Application application;
        qint64 pid = 0; ///< 0 while the running one is being asked
        Duration begun{};
        bool isWantedAgain = false; ///< another launch came meanwhile
    };

    std::optional<Application> applicationAt(const std::string& bundlePath) const;
    bool isUnderWay(const QString& busName);
    void askRunningOne(const Application& application);
    void useSilence(const Application& application);
    void isUp(const QString& busName);
    void finish(const QString& busName);
    void useAnswer(const Application& application, bool runs);
    void startUnlessItRuns(const Application& application);
    void start(const Application& application);

    SessionBus& mBus;
    Bundles& mBundles;
    const RunLoop& mClock;
    Log& mLog;
    std::map<QString, Start> mStarts;
    QDBusServiceWatcher mNameWatcher;
};

} // namespace farview
