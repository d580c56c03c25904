#include "Applications/CommandLine.h"
#include "Applications/Doctor/DoctorProgram.h"
#include "Applications/Doctor/FurtherDeviceRequest.h"
#include "Applications/Doctor/HangWatchdog.h"
#include "Applications/Doctor/PairingAnswer.h"
#include "Applications/Doctor/Report.h"
#include "Applications/TerminationSignals.h"
#include "Common/Rules/PairingReport.h"

#include <QCoreApplication>

#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

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
   1  no device can be used, or what was asked for could not be done; the lines
      marked "Problem" say why
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

/// Something to do instead of an examination.
using Command = std::function<void(DoctorProgram& program, DoctorProgram::Ended ended)>;

int carryOut(int argc, char** argv, const Command& command)
{
    const BusFacts buses = checkBuses();
    const QCoreApplication application(argc, argv);
    DoctorProgram program(buses);
    command(program, [](const Outcome& outcome) {
        std::printf("%s\n", outcome.text.c_str());
        QCoreApplication::exit(outcome.isDone ? 0 : 1);
    });
    return QCoreApplication::exec();
}

Command switchingPacketLog(const std::string& value)
{
    if (value != "on" && value != "off")
        return {};
    return
        [isOn = value == "on"](auto& program, auto ended) { program.switchPacketLog(isOn, ended); };
}

Command answering(PairingAnswer::Answer answer, const std::string& typed)
{
    const std::string digits = withoutBlanks(typed);
    if (!arePairingDigits(digits))
        return {};
    return [=](auto& program, auto ended) { program.answerPairing(answer, digits, ended); };
}

Command confirming(const std::string& typed)
{
    return answering(PairingAnswer::Answer::confirm, typed);
}

Command refusing(const std::string& typed)
{
    return answering(PairingAnswer::Answer::refuse, typed);
}

/// Something to do with the device of that name: nothing without one.
template <typename Operation> Command withDevice(const std::string& name, Operation operation)
{
    if (name.empty())
        return {};
    return [=](auto& program, auto ended) { operation(program, name, ended); };
}

Command forgetting(const std::string& name)
{
    return withDevice(name, [](auto& program, const auto& device, auto ended) {
        program.forgetDevice(device, ended);
    });
}

template <bool mayType> Command lettingType(const std::string& name)
{
    return withDevice(name, [](auto& program, const auto& device, auto ended) {
        program.letType(device, mayType, ended);
    });
}

template <FurtherDeviceRequest::Wish wish> Command wishing(const std::string& name)
{
    return withDevice(name, [](auto& program, const auto& device, auto ended) {
        program.askForFurtherDevice(wish, device, ended);
    });
}

/// The options that ask for a command, and what makes it of their value: nothing of one that does
/// not fit.
constexpr std::array commands = {std::pair{"packet-log", &switchingPacketLog},
                                 std::pair{"confirm", &confirming},
                                 std::pair{"refuse", &refusing},
                                 std::pair{"forget", &forgetting},
                                 std::pair{"also", &wishing<FurtherDeviceRequest::Wish::use>},
                                 std::pair{"stop", &wishing<FurtherDeviceRequest::Wish::leave>},
                                 std::pair{"let-type", &lettingType<true>},
                                 std::pair{"no-typing", &lettingType<false>}};

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

int tryScreen(int argc, char** argv, bool asJSON)
{
    const BusFacts buses = checkBuses();
    const QCoreApplication application(argc, argv);
    DoctorProgram program(buses);
    program.tryScreen([] { QCoreApplication::quit(); });
    const TerminationSignals termination([&] { program.stopTrying(); });
    QCoreApplication::exec();
    return conclude(program, asJSON);
}

CommandLine::Options options()
{
    return {
        {u"json"_qs, u"Print the report for programs, as JSON with English texts"_qs},
        {u"try-screen"_qs,
         u"Instead, add a screen for five seconds, move the pointer over it, and print what "
         "arrived of it"_qs},
        {u"packet-log"_qs,
         u"Instead, have the screen server log what it sends of the screen, in files that only "
         "you can read, or end that"_qs,
         u"on|off"_qs},
        {u"confirm"_qs,
         u"Instead, say that the device which is being connected shows these digits"_qs,
         u"digits"_qs},
        {u"refuse"_qs, u"Instead, say that it does not, or that you do not want it"_qs,
         u"digits"_qs},
        {u"forget"_qs,
         u"Instead, take a device from those that you have confirmed; by its name, or by the "
         "digits of its key"_qs,
         u"name"_qs},
        {u"also"_qs,
         u"Instead, use that device beside the one that is used already; by its name, or by its "
         "host's"_qs,
         u"name"_qs},
        {u"stop"_qs, u"Instead, leave a device that is used beside another one"_qs, u"name"_qs},
        {u"let-type"_qs,
         u"Instead, let a confirmed device type on this computer: whoever holds it can then do "
         "what you can do here"_qs,
         u"name"_qs},
        {u"no-typing"_qs, u"Instead, take that back"_qs, u"name"_qs}};
}

/// What the options ask for; nothing when it is an examination.
Command commandIn(CommandLine& line)
{
    Command command;
    for (const auto& [option, commandFor] : commands)
        line.read(option, [&, commandFor = commandFor](const std::string& value) {
            if (command)
                line.refuse(u"Only one thing at a time"_qs);
            command = commandFor(value);
            return bool(command);
        });
    return command;
}

} // namespace

int main(int argc, char** argv)
{
    CommandLine line(CommandLine::words(argc, argv), purpose, options(), exitStatuses);
    const Command command = commandIn(line);
    if (command && line.has("try-screen"))
        line.refuse(u"Only one thing at a time"_qs);
    if (line.answer())
        return print(*line.answer());
    if (line.has("try-screen"))
        return tryScreen(argc, argv, line.has("json"));
    return command ? carryOut(argc, argv, command) : run(argc, argv, line.has("json"));
}
