#include "Applications/Doctor/DoctorArguments.h"
#include "Applications/Doctor/DoctorProgram.h"
#include "Applications/Doctor/HangWatchdog.h"
#include "Applications/Doctor/Report.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

using namespace farview;

/// Later than any run that goes on, and within the time that --help promises.
constexpr std::chrono::milliseconds hangLimit{9500};

std::string rendered(const Report& report, const DoctorProgram& program, bool asJSON)
{
    return asJSON ? renderedJSON(report) : renderedText(report, [&](const std::string& text) {
        return program.translated(text);
    });
}

/// Prints the report and says how the program ends.
int conclude(const DoctorProgram& program, bool asJSON)
{
    const Report report = program.notebook().report();
    std::fputs(rendered(report, program, asJSON).c_str(), stdout);
    std::fflush(stdout);
    return exitStatusFor(verdictOf(report));
}

int run(int argc, char** argv, bool asJSON)
{
    const BusFacts buses = checkBuses();
    const QCoreApplication application(argc, argv);
    DoctorProgram program(buses);
    const HangWatchdog watchdog(hangLimit, [&] { return conclude(program, asJSON); });
    program.examine([](Area) {}, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    return conclude(program, asJSON);
}

} // namespace

int main(int argc, char** argv)
{
    const DoctorArguments arguments = readDoctorArguments({argv + 1, argv + argc});
    switch (arguments.wish) {
    case DoctorArguments::Wish::help:
        std::fputs(doctorUsage, stdout);
        return 0;
    case DoctorArguments::Wish::version:
        std::puts("farview-doctor " FARVIEW_VERSION);
        return 0;
    case DoctorArguments::Wish::none:
        std::fprintf(stderr, "farview-doctor: %s (see farview-doctor --help)\n",
                     arguments.mistake.c_str());
        return wrongUseOfDoctor;
    case DoctorArguments::Wish::examine:
        break;
    }
    return run(argc, argv, arguments.asJSON);
}
