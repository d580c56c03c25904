#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace farview
{

/// The screen server and the status item of a bundle. Who orders the installation ends them; this
/// starts those that ran before again. Main thread.
class HelperPrograms
{
public:
    /// `bundle` is the bundle's own path.
    explicit HelperPrograms(std::string bundle);

    /// Looks which of them run now.
    void note();
    /// Starts those once they have ended; one that does not end within ten seconds is left to make
    /// out with the next one which of them stays. Then calls `then`, at once when none ran.
    void startAgain(std::function<void()> then);

private:
    void startWhenEnded();

    std::string mBundle;
    std::vector<std::string> mPrograms; ///< that ran
    std::vector<pid_t> mProcesses;      ///< of these
    std::function<void()> mThen;
    QElapsedTimer mWaiting;
    QTimer mTimer;
};

} // namespace farview
