#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <QProcess>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// Runs the host's smoke test on a bundle, apart from the user's session: with folders and a
/// message bus of its own that starts no services, and without a display. The processes end with
/// this object, and when this process is killed. Main thread.
class TrialRun
{
public:
    /// Called once, when all processes have ended; with nothing when the bundle passed.
    using Then = std::function<void(const std::optional<UpdateFailure>& failure)>;

    TrialRun();
    ~TrialRun();
    TrialRun(const TrialRun&) = delete;
    TrialRun& operator=(const TrialRun&) = delete;

    /// `folder` is an empty private folder; the programs use it as their home.
    void start(const std::string& host, const std::string& bundle, const std::string& folder,
               Then then);
    /// Ends the run with a failure.
    void cancel();

private:
    void stop();
    std::unique_ptr<QProcess> newProcess();
    void startBus();
    void startHost();
    void conclude();
    void end(std::optional<UpdateFailure> failure);
    void settle();

    QString mHostPath;
    QString mBundle;
    QString mFolder;
    Then mThen;
    std::unique_ptr<QProcess> mBus;
    std::unique_ptr<QProcess> mHost;
    QTimer mLimit;
    bool mIsOver = true;
    std::optional<UpdateFailure> mFailure; ///< the outcome, once it is over
};

} // namespace farview
