#include "Applications/Update/UpdateArguments.h"

namespace farview
{
namespace
{

const auto purpose = QStringLiteral(R"(
Updates a pane's bundle from the feed that its Info.plist names. Reads "download",
"install" and "cancel" from standard input, one word per line, and prints what
happens as JSON, one object per line. The end of the input before "install" is
"cancel". The panel is what usually runs it.
)");

const auto exitStatuses = QStringLiteral(R"(
Exit status:
   0  nothing newer, installed, cancelled, or found with --check-only
   1  failed; the last line says why
   2  wrong use)");

const CommandLine::Options& options()
{
    static const CommandLine::Options list{
        {u"bundle"_qs, u"The bundle to update"_qs, u"PATH"_qs},
        {u"host"_qs, u"The farview-preferences that tries the new bundle"_qs, u"PATH"_qs},
        {u"check-only"_qs, u"Only look whether there is something newer"_qs},
        {u"patience"_qs, u"How long a server may be silent, 1 to 600 (30 when not said)"_qs,
         u"SECONDS"_qs},
    };
    return list;
}

bool readPatience(const std::string& text, std::chrono::seconds& patience)
{
    constexpr int most = 600;
    int seconds = 0;
    const bool fits = readNumber(text, seconds) && seconds >= 1 && seconds <= most;
    patience = std::chrono::seconds(seconds);
    return fits;
}

} // namespace

UpdateArguments readUpdateArguments(const QStringList& words)
{
    CommandLine line(words, purpose, options(), exitStatuses);
    UpdateArguments result{line.value("bundle").toStdString(), line.value("host").toStdString(),
                           line.has("check-only")};
    line.read("patience", [&](const auto& value) { return readPatience(value, result.patience); });
    if (result.bundle.empty() || result.host.empty())
        line.refuse(u"--bundle and --host are needed."_qs);
    result.answer = line.answer();
    return result;
}

} // namespace farview
