#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace farview
{

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the event loop. One at a time in a process; the
/// application object must exist. Its destruction restores what the signals did before.
class TerminationSignals
{
public:
    /// `action` is called at each of these signals, on the main thread.
    explicit TerminationSignals(std::function<void()> action);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> mNotifier;
};

} // namespace farview
