#include "Applications/TerminationSignals.h"
#include "Applications/Update/UpdateArguments.h"
#include "Applications/Update/UpdateCommands.h"
#include "Applications/Update/UpdateRun.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <optional>
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

int update(const UpdateArguments& arguments)
{
    UpdateRun run(arguments, stdout, [](int status) { QCoreApplication::exit(status); });
    const TerminationSignals termination([&] { run.take(UpdateCommand::cancel); });
    std::optional<Listener> listener;
    if (!arguments.onlyChecks)
        listener.emplace(run);
    QTimer::singleShot(0, QCoreApplication::instance(), [&] { run.start(); });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    constexpr int wrongUse = 2;
    // The panel may end before the update does.
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(S_IWGRP | S_IWOTH);
    const QCoreApplication application(argc, argv);
    const auto arguments = readUpdateArguments(QCoreApplication::arguments());
    if (!arguments.mistake.empty()) {
        std::fprintf(stderr, "farview-update: %s (see farview-update --help)\n",
                     arguments.mistake.c_str());
        return wrongUse;
    }
    if (arguments.answer.empty())
        return update(arguments);
    std::fputs(arguments.answer.c_str(), stdout);
    return 0;
}
