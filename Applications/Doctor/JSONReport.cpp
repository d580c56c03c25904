#include "Applications/Doctor/Report.h"
#include "Applications/Doctor/Sentence.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace farview
{
namespace
{

/// Of this form of report: it grows when a key changes its meaning or goes.
constexpr int formatVersion = 1;

QString text(const std::string& value) { return QString::fromStdString(value); }

std::string untranslated(const std::string& text) { return text; }

QJsonObject detailsOf(const Finding& finding)
{
    QJsonObject details;
    for (const auto& [name, value] : finding.details)
        details[text(name)] = text(shownValue(value));
    return details;
}

QJsonObject objectFor(const Finding& finding)
{
    QJsonObject object{{"area", nameOf(finding.area)},
                       {"id", text(identifierOf(finding))},
                       {"severity", nameOf(finding.severity)},
                       {"text", text(shownSentence(finding.text, untranslated))},
                       {"details", detailsOf(finding)}};
    if (!finding.advice.key.empty())
        object["advice"] = text(shownSentence(finding.advice, untranslated));
    return object;
}

} // namespace

std::string renderedJSON(const Report& report)
{
    QJsonArray findings;
    for (const Finding& finding : report.findings)
        findings.append(objectFor(finding));
    const QJsonObject object{{"format", formatVersion},
                             {"version", text(shownValue(report.version))},
                             {"date", text(shownValue(report.date))},
                             {"complete", report.isComplete},
                             {"verdict", nameOf(verdictOf(report))},
                             {"findings", findings}};
    return QJsonDocument(object).toJson(QJsonDocument::Indented).toStdString();
}

} // namespace farview
