#include "Applications/Update/UpdateArguments.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <QCommandLineParser>

namespace farview
{
namespace
{

constexpr auto description =
    R"(Updates a pane's bundle from the feed that its Info.plist names. Reads "download", "install" and
"cancel" from standard input, one word per line, and prints what happens as JSON, one object per
line. The end of the input before "install" is "cancel". The panel is what usually runs it.

Exit status: 0 for nothing newer, installed, cancelled, or found with --check-only; 1 for a failure,
which the last line names; 2 for wrong use.)";

constexpr std::size_t longestMistake = 200;
constexpr int longestPatience = 600;

const QCommandLineOption bundleOption{"bundle", "The bundle to update.", "path"};
const QCommandLineOption hostOption{"host", "The farview-preferences that tries the new bundle.",
                                    "path"};
const QCommandLineOption checkOption{"check-only", "Only look whether there is something newer."};
const QCommandLineOption patienceOption{"patience", "How long a server may be silent: 1 to 600.",
                                        "seconds", "30"};

QString mistakeIn(const QCommandLineParser& parser)
{
    bool isNumber = false;
    const int patience = parser.value(patienceOption).toInt(&isNumber);
    if (!parser.positionalArguments().isEmpty())
        return "Unexpected argument: " + parser.positionalArguments().constFirst();
    if (parser.value(bundleOption).isEmpty() || parser.value(hostOption).isEmpty())
        return "--bundle and --host are needed";
    return isNumber && patience >= 1 && patience <= longestPatience ? "" : "--patience is 1 to 600";
}

} // namespace

UpdateArguments readUpdateArguments(const QStringList& commandLine)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addOptions({bundleOption, hostOption, checkOption, patienceOption});
    const auto help = parser.addHelpOption();
    const auto version = parser.addVersionOption();
    const bool isUnderstood = parser.parse(commandLine);
    UpdateArguments result;
    if (parser.isSet(help))
        result.answer = parser.helpText().toStdString();
    else if (parser.isSet(version))
        result.answer = "farview-update " FARVIEW_VERSION "\n";
    else
        result.mistake = printableText(
            (isUnderstood ? mistakeIn(parser) : parser.errorText()).toStdString(), longestMistake);
    result.bundle = parser.value(bundleOption).toStdString();
    result.host = parser.value(hostOption).toStdString();
    result.onlyChecks = parser.isSet(checkOption);
    result.patience = std::chrono::seconds(parser.value(patienceOption).toInt());
    return result;
}

} // namespace farview
