#include "Applications/Doctor/Report.h"
#include "Applications/Doctor/Sentence.h"

#include <optional>

namespace farview
{
namespace
{

const char* markOf(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return "OK";
    case Severity::note:
        return "Note";
    case Severity::problem:
        break;
    }
    return "Problem";
}

} // namespace

std::string renderedText(const Finding& finding, const Translate& translate)
{
    std::string lines = "  [" + translate(markOf(finding.severity)) + "] " +
                        shownSentence(finding.text, translate) + "\n";
    if (!finding.advice.key.empty())
        lines += "      " + shownSentence(finding.advice, translate) + "\n";
    return lines;
}

std::string renderedText(const Report& report, const Translate& translate)
{
    std::string text =
        shownSentence({"Farview %@, diagnosis of %@", {report.version, report.date}}, translate) +
        "\n" + translate(titleOf(verdictOf(report))) + "\n";
    std::optional<Area> area;
    for (const Finding& finding : report.findings) {
        if (area != finding.area)
            text += "\n" + translate(titleOf(finding.area)) + "\n";
        area = finding.area;
        text += renderedText(finding, translate);
    }
    return text;
}

} // namespace farview
