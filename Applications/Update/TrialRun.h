#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <QProcess>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// Lets the host go through a bundle's whole life, cut off from the user's own: with folders and a
/// message bus of its own, and without a display. Main thread.
class TrialRun
{
public:
    /// Called once; with nothing when the bundle passed.
    using Then = std::function<void(std::optional<UpdateFailure> failure)>;

    TrialRun();
    ~TrialRun();
    TrialRun(const TrialRun&) = delete;
    TrialRun& operator=(const TrialRun&) = delete;

    /// `folder` is private and exists; the programs keep there what they would keep at home.
    void start(const std::string& host, const std::string& bundle, const std::string& folder,
               Then then);
    /// Ends what is under way; nothing more is called.
    void stop();

private:
    void conclude();
    void end(std::optional<UpdateFailure> failure);

    std::unique_ptr<QProcess> mProcess;
    QTimer mLimit;
    Then mThen;
};

} // namespace farview
