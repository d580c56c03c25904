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

int update(const UpdateArguments& arguments)
{
    UpdateRun run(arguments, stdout, [](int status) { QCoreApplication::exit(status); });
    const TerminationSignals termination([&] { run.take(UpdateCommand::cancel); });
    std::optional<UpdateCommands> commands;
    if (!arguments.onlyChecks) {
        commands.emplace(STDIN_FILENO, [&](UpdateCommand command) { run.take(command); });
        run.setListen([&] { commands->poll(); });
    }
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
