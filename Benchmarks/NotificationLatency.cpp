// The time from a post in one process to its handler in another, against a bare D-Bus signal
// between the same two processes on the same bus, alternating.
//
// usage: notification-latency [ROUNDS]        (starts a bus of its own)

#include "Benchmarks/Figures.h"
#include "Benchmarks/NotificationPeer.h"
#include "Tests/Support/PrivateBus.h"

#include <QCoreApplication>

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using farview::NotificationPeer;

constexpr int warmUpRounds = 200;

struct Receiver {
    pid_t pid = -1;
    int answers = -1; ///< each of its handlers writes the time here
};

/// Starts this program again as the process that receives.
Receiver startReceiver(const char* program)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(program, program, "--receive", nullptr);
        _exit(127);
    }
    close(ends[1]);
    return {pid, ends[0]};
}

/// The time that the receiver wrote next; 0 when it has ended.
double nextAnswer(const Receiver& receiver)
{
    double time = 0;
    return read(receiver.answers, &time, sizeof time) == sizeof time ? time : 0;
}

template <typename Post> bool sample(const Receiver& receiver, Post post, std::vector<double>& into)
{
    const double begin = farview::microsecondsNow();
    post();
    const double end = nextAnswer(receiver);
    into.push_back(end - begin);
    return end > 0;
}

bool measure(const Receiver& receiver, int rounds, farview::Comparison& result)
{
    NotificationPeer sender;
    for (int round = 0; round < warmUpRounds + rounds; ++round) {
        if (round == warmUpRounds) {
            result.subject.clear();
            result.yardstick.clear();
        }
        if (!sample(
                receiver, [&] { sender.sendSignal(); }, result.yardstick) ||
            !sample(
                receiver, [&] { sender.post(); }, result.subject))
            return false;
    }
    return true;
}

int send(const char* program, int rounds)
{
    const PrivateBus bus;
    const SessionBusScope scope(bus.address());
    const Receiver receiver = startReceiver(program);
    farview::Comparison result{"post to handler in another process", "a bare D-Bus signal", "us"};
    // Its first answer says that it listens.
    const bool measured = nextAnswer(receiver) > 0 && measure(receiver, rounds, result);
    kill(receiver.pid, SIGKILL);
    waitpid(receiver.pid, nullptr, 0);
    if (!measured) {
        std::fprintf(stderr, "the receiving process has ended\n");
        return 1;
    }
    farview::printRatio(result, 2);
    std::printf("  one in a hundred takes longer than %.0f us (bare signal: %.0f us)\n",
                farview::quantile(result.subject, 0.99), farview::quantile(result.yardstick, 0.99));
    return 0;
}

void answer()
{
    const double now = farview::microsecondsNow();
    if (write(STDOUT_FILENO, &now, sizeof now) != sizeof now)
        _exit(1);
}

int receive(QCoreApplication& application)
{
    NotificationPeer receiver;
    receiver.listen(answer);
    answer();
    return application.exec();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const std::string option = argc > 1 ? argv[1] : "2000";
    return option == "--receive" ? receive(application) : send(argv[0], std::atoi(option.c_str()));
}
