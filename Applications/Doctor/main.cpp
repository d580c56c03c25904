#include "Applications/CommandLine.h"
#include "Applications/Doctor/DoctorProgram.h"
#include "Applications/Doctor/HangWatchdog.h"
#include "Applications/Doctor/Report.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

namespace
{

using namespace farview;

/// Later than any run that goes on, and within the time that --help promises.
constexpr std::chrono::milliseconds hangLimit{9500};

const auto purpose = QStringLiteral(R"(
Looks at everything that Farview needs, and prints what it found: versions,
message bus, network, driver, programs, settings, desktop, and the devices that
are announced. Changes nothing, and does not connect to a device as a screen
would. Takes at most 10 seconds.
)");

const auto exitStatuses = QStringLiteral(R"(
Exit status:
   0  a device can be used: nothing was found that is in the way of it
   1  no device can be used, or the setting cannot be kept; the lines marked
      "Problem" say why
   2  wrong use
   3  unknown: time was over before everything had answered)");

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

bool isProblem(const Finding& finding) { return finding.severity == Severity::problem; }

int switchPacketLog(int argc, char** argv, bool isOn)
{
    const BusFacts buses = checkBuses();
    const QCoreApplication application(argc, argv);
    DoctorProgram program(buses);
    program.switchPacketLog(isOn, [&](const Findings& findings) {
        for (const auto& each : findings)
            std::fputs(
                renderedText(each, [&](const auto& text) { return program.translated(text); })
                    .c_str(),
                stdout);
        QCoreApplication::exit(std::any_of(findings.begin(), findings.end(), isProblem) ? 1 : 0);
    });
    return QCoreApplication::exec();
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
    std::optional<bool> packetLog;
    CommandLine line(CommandLine::words(argc, argv), purpose,
                     {{u"json"_qs, u"Print the report for programs, as JSON with English texts"_qs},
                      {u"packet-log"_qs,
                       u"Instead, have the screen server log what it sends of the screen, in files "
                       "that only you can read, or end that"_qs,
                       u"on|off"_qs}},
                     exitStatuses);
    line.read("packet-log", [&](const std::string& value) {
        packetLog = value == "on";
        return value == "on" || value == "off";
    });
    if (line.answer())
        return print(*line.answer());
    return packetLog ? switchPacketLog(argc, argv, *packetLog) : run(argc, argv, line.has("json"));
}
