#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

namespace farview
{

/// The screen server and the status item of a bundle. The panel ends them before the installation;
/// this starts those again that ran before. Main thread.
class HelperPrograms
{
public:
    /// `bundle` is its canonical path.
    explicit HelperPrograms(std::string bundle);

    /// Notes which of them run now.
    void note();
    /// Starts them when they have ended, after ten seconds at the latest: of two that run, one
    /// gives way by itself. Then calls `then`; at once when none ran.
    void startAgain(std::function<void()> then);

private:
    void startWhenEnded();

    std::string mBundle;
    std::vector<std::string> mPrograms;  ///< that ran
    std::vector<std::string> mProcesses; ///< their numbers
    std::function<void()> mThen;
    QElapsedTimer mWaiting;
    QTimer mTimer;
};

} // namespace farview
