#include "Applications/Doctor/DoctorArguments.h"

#include "Applications/Doctor/Sentence.h"

namespace farview
{

const char* const doctorUsage =
    R"(Usage: farview-doctor [--json]

Looks at everything that Farview needs, and prints what it found: versions, message bus, network,
driver, programs, settings, desktop, and the devices that are announced. Changes nothing, and does
not connect to a device as a screen would. Takes at most 10 seconds.

  --json     print the report for programs, as JSON with English texts
  --help     print this help
  --version  print the version

Exit status:
   0  a device can be used: nothing was found that is in the way of it
   1  no device can be used; the lines marked "Problem" say why
   2  wrong use
   3  unknown: time was over before everything had answered
)";

DoctorArguments readDoctorArguments(const std::vector<std::string>& arguments)
{
    using Wish = DoctorArguments::Wish;
    DoctorArguments result;
    for (const auto& argument : arguments) {
        if (argument == "--json")
            result.asJSON = true;
        else if (argument == "--help" || argument == "-h")
            return {Wish::help, false, {}};
        else if (argument == "--version" || argument == "-v")
            return {Wish::version, false, {}};
        else
            return {Wish::none, false, "unexpected argument " + shownValue(argument)};
    }
    return result;
}

} // namespace farview
