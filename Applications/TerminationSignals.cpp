#include "Applications/TerminationSignals.h"

#include <array>
#include <cstdint>

#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace farview
{

namespace
{

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler reaches nothing but globals.
int eventDescriptor = -1;
std::array<struct sigaction, endingSignals.size()> previousActions{};

void handle(int)
{
    const std::uint64_t one = 1;
    // A full counter already wakes the loop.
    [[maybe_unused]] const auto written = ::write(eventDescriptor, &one, sizeof one);
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> action)
{
    eventDescriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    mNotifier = std::make_unique<QSocketNotifier>(eventDescriptor, QSocketNotifier::Read);
    QObject::connect(mNotifier.get(), &QSocketNotifier::activated, mNotifier.get(),
                     [action = std::move(action)] {
                         std::uint64_t count = 0;
                         if (::read(eventDescriptor, &count, sizeof count) > 0)
                             action();
                     });
    struct sigaction ours {
    };
    ours.sa_handler = handle;
    ours.sa_flags = SA_RESTART;
    for (std::size_t index = 0; index < endingSignals.size(); ++index)
        ::sigaction(endingSignals[index], &ours, &previousActions[index]);
}

TerminationSignals::~TerminationSignals()
{
    for (std::size_t index = 0; index < endingSignals.size(); ++index)
        ::sigaction(endingSignals[index], &previousActions[index], nullptr);
    mNotifier.reset();
    ::close(eventDescriptor);
}

} // namespace farview
