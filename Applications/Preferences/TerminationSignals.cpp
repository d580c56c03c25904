#include "Applications/Preferences/TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{

int ends[2] = {-1, -1};

// Nothing but a write is allowed here; the loop does the rest.
void noteSignal(int /*number*/)
{
    const char byte = 0;
    [[maybe_unused]] const auto written = write(ends[1], &byte, 1);
}

void handle(int number, void (*handler)(int))
{
    struct sigaction action {
    };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (read(ends[0], &byte, 1) == 1) {
        }
        emit received();
    });
    handle(SIGTERM, noteSignal);
    handle(SIGINT, noteSignal);
}

TerminationSignals::~TerminationSignals()
{
    handle(SIGTERM, SIG_DFL);
    handle(SIGINT, SIG_DFL);
    for (int& end : ends) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}
