#include "Applications/TerminationSignals.h"
#include "Applications/Update/UpdateArguments.h"
#include "Applications/Update/UpdateCommands.h"
#include "Applications/Update/UpdateEvents.h"
#include "Applications/Update/UpdateRun.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace farview;

/// Hands the words on standard input to the run.
class Listener
{
public:
    explicit Listener(UpdateRun& run)
        : mCommands(STDIN_FILENO, [&run](UpdateCommand command) { run.take(command); })
    {
        run.setListen([this] { listen(); });
        QObject::connect(&mNotifier, &QSocketNotifier::activated, &mNotifier, [this] { listen(); });
    }

private:
    void listen()
    {
        mCommands.poll();
        if (mCommands.hasEnded())
            mNotifier.setEnabled(false);
    }

    UpdateCommands mCommands;
    QSocketNotifier mNotifier{STDIN_FILENO, QSocketNotifier::Read};
};

int update(int argc, char** argv, const UpdateArguments& arguments)
{
    // The panel may end before the update does.
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(S_IWGRP | S_IWOTH);
    const QCoreApplication application(argc, argv);
    UpdateEvents events(stdout);
    UpdateRun run(arguments, events, [](int status) { QCoreApplication::exit(status); });
    const TerminationSignals termination([&run] { run.take(UpdateCommand::cancel); });
    std::optional<Listener> listener;
    if (!arguments.onlyChecks)
        listener.emplace(run);
    QTimer::singleShot(0, &application, [&run] { run.start(); });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const auto arguments = readUpdateArguments(CommandLine::words(argc, argv));
    return arguments.answer ? print(*arguments.answer) : update(argc, argv, arguments);
}
