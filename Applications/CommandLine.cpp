#include "Applications/CommandLine.h"

#include "Platform/Posix/StandardErrorLog.h"

#include <QFileInfo>

#include <cstdio>

namespace farview
{
namespace
{

constexpr std::size_t longestMistake = 300;

} // namespace

CommandLine::CommandLine(const QStringList& words, const QString& purpose, const Options& options,
                         const QString& ending)
    : mProgram(QFileInfo(words.value(0)).fileName())
{
    mParser.setApplicationDescription(purpose.trimmed());
    mParser.addOptions(options);
    mParser.addOption({{u"h"_qs, u"help"_qs}, u"Print this help"_qs});
    mParser.addOption({{u"v"_qs, u"version"_qs}, u"Print the version"_qs});
    if (!mParser.parse(words))
        refuse(mParser.errorText());
    else if (!mParser.positionalArguments().isEmpty())
        refuse(u"Unexpected argument '%1'."_qs.arg(mParser.positionalArguments().first()));
    else if (has("help"))
        // The parser knows the program's name only where there is an application object.
        mAnswer = {0, mParser.helpText().replace(u"<executable_name>"_qs, mProgram) + ending};
    else if (has("version"))
        mAnswer = {0, mProgram + QStringLiteral(" " FARVIEW_VERSION)};
}

void CommandLine::read(const char* option, const Reader& reader)
{
    if (has(option) && !reader(value(option).toStdString()))
        refuse(u"--%1 cannot have that value."_qs.arg(QLatin1String(option)));
}

void CommandLine::refuse(const QString& mistake)
{
    if (!mAnswer)
        mAnswer = {wrongUse, u"%1: %2 (see %1 --help)"_qs.arg(
                                 mProgram, QString::fromStdString(printableText(
                                               mistake.toStdString(), longestMistake)))};
}

QStringList CommandLine::words(int argc, char** argv)
{
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return words;
}

int print(const CommandLineAnswer& answer)
{
    std::FILE* const file = answer.status == 0 ? stdout : stderr;
    std::fprintf(file, "%s\n", qPrintable(answer.text.trimmed()));
    return answer.status;
}

} // namespace farview
