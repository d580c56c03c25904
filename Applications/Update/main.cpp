#include "Applications/TerminationSignals.h"
#include "Applications/Update/UpdateArguments.h"
#include "Applications/Update/UpdateCommands.h"
#include "Applications/Update/UpdateRun.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace farview;

int update(int argc, char** argv, const UpdateArguments& arguments)
{
    // The panel may end before the update does.
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(S_IWGRP | S_IWOTH);
    const QCoreApplication application(argc, argv);
    UpdateRun run(arguments, stdout, [](int status) { QCoreApplication::exit(status); });
    const TerminationSignals termination([&] { run.take(UpdateCommand::cancel); });
    std::optional<UpdateCommands> commands;
    if (!arguments.onlyChecks) {
        commands.emplace(STDIN_FILENO, [&](UpdateCommand command) { run.take(command); });
        run.setListen([&] { commands->poll(); });
    }
    QTimer::singleShot(0, &application, [&] { run.start(); });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const auto arguments = readUpdateArguments(CommandLine::words(argc, argv));
    return arguments.answer ? print(*arguments.answer) : update(argc, argv, arguments);
}
