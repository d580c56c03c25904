#include "Applications/Update/UpdateArguments.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <charconv>

namespace farview
{

const char* const updateUsage =
    R"(Usage: farview-update --bundle PATH --host PATH [--check-only] [--patience SECONDS]

Updates a pane's bundle from the feed that its Info.plist names. Reads "download", "install" and
"cancel" from standard input, one word per line, and prints what happens as JSON, one object per
line. The end of the input before "install" is "cancel". The panel is what usually runs it.

  --bundle PATH       the bundle to update
  --host PATH         the farview-preferences that tries the new bundle
  --check-only        only look whether there is something newer
  --patience SECONDS  how long a server may be silent, 1 to 600 (30 when not said)
  --help              print this help
  --version           print the version

Exit status:
   0  nothing newer, installed, cancelled, or found with --check-only
   1  failed; the last line says why
   2  wrong use
)";

namespace
{

using Wish = UpdateArguments::Wish;

constexpr std::size_t longestShownArgument = 200;

UpdateArguments mistake(const std::string& text)
{
    UpdateArguments arguments;
    arguments.wish = Wish::none;
    arguments.mistake = text;
    return arguments;
}

bool readPatience(const std::string& text, std::chrono::seconds& patience)
{
    constexpr int most = 600;
    int seconds = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, seconds);
    patience = std::chrono::seconds(seconds);
    return result.ec == std::errc() && result.ptr == end && seconds >= 1 && seconds <= most;
}

/// Whether the option is known and its value fits.
bool takeValue(UpdateArguments& arguments, const std::string& option, const std::string& value)
{
    if (option == "--bundle")
        arguments.bundle = value;
    else if (option == "--host")
        arguments.host = value;
    else
        return option == "--patience" && readPatience(value, arguments.patience);
    return !value.empty();
}

} // namespace

UpdateArguments readUpdateArguments(const std::vector<std::string>& arguments)
{
    UpdateArguments result;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const auto& argument = arguments[index];
        if (argument == "--help" || argument == "-h") {
            result.wish = Wish::help;
            return result;
        }
        if (argument == "--version" || argument == "-v") {
            result.wish = Wish::version;
            return result;
        }
        if (argument == "--check-only")
            result.onlyChecks = true;
        else if (index + 1 == arguments.size() || !takeValue(result, argument, arguments[++index]))
            return mistake("unexpected argument, or its value is missing or wrong: " +
                           printableText(argument, longestShownArgument));
    }
    if (result.bundle.empty() || result.host.empty())
        return mistake("--bundle and --host are needed");
    return result;
}

} // namespace farview
