#include "Platform/Desktop/Updates/UpdateReport.h"

#include "Platform/Types/UpdateProblem.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <string_view>

namespace farview
{
namespace
{

using Stage = UpdateStatus::Stage;

constexpr qsizetype longestVersion = 40;
constexpr qsizetype longestNotes = 16'000;
constexpr qsizetype longestDetail = 400;
/// More than any update of ours will ever be.
constexpr std::int64_t largestDownload = std::int64_t{4} * 1024 * 1024 * 1024;

struct Event {
    const char* name;
    Stage stage;
};

constexpr std::array<Event, 10> events{{
    {"checking", Stage::checking},
    {"current", Stage::current},
    {"found", Stage::found},
    {"downloading", Stage::downloading},
    {"verifying", Stage::verifying},
    {"ready", Stage::ready},
    {"installing", Stage::installing},
    {"installed", Stage::installed},
    {"cancelled", Stage::cancelled},
    {"failed", Stage::failed},
}};

std::optional<Stage> stageOf(const QString& event)
{
    for (const auto& each : events) {
        if (event == QLatin1String(each.name))
            return each.stage;
    }
    return std::nullopt;
}

bool isVersionLetter(QChar letter)
{
    const char16_t code = letter.unicode();
    return (code >= u'0' && code <= u'9') || (code >= u'A' && code <= u'Z') ||
           (code >= u'a' && code <= u'z') || code == u'.' || code == u'-' || code == u'+' ||
           code == u'~' || code == u'_';
}

bool isVersion(const QString& text)
{
    return !text.isEmpty() && text.size() <= longestVersion &&
           std::all_of(text.begin(), text.end(), isVersionLetter);
}

bool readVersion(const QJsonObject& object, UpdateStatus& status)
{
    const QString version = object.value(u"version").toString();
    status.version = version.toStdString();
    return isVersion(version);
}

bool readLength(const QJsonObject& object, UpdateStatus& status)
{
    status.length = object.value(u"length").toInteger(-1);
    return status.length > 0 && status.length <= largestDownload;
}

bool readProgress(const QJsonObject& object, UpdateStatus& status)
{
    status.received = object.value(u"received").toInteger(-1);
    return readLength(object, status) && status.received >= 0 && status.received <= status.length;
}

/// Whether the report has what its kind needs.
bool readParts(const QJsonObject& object, UpdateStatus& status)
{
    switch (status.stage) {
    case Stage::current:
    case Stage::ready:
    case Stage::installed:
        return readVersion(object, status);
    case Stage::found:
        status.notes = object.value(u"notes").toString().left(longestNotes).toStdString();
        return readVersion(object, status) && readLength(object, status);
    case Stage::downloading:
        return readProgress(object, status);
    case Stage::failed:
        status.problem = updateProblemOf(object.value(u"reason").toString().toStdString());
        return true;
    default:
        return true;
    }
}

} // namespace

std::optional<UpdateReport> readUpdateReport(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const auto stage = stageOf(object.value(u"event").toString());
    if (!stage)
        return std::nullopt;
    UpdateReport report;
    report.status.stage = *stage;
    report.detail = object.value(u"detail").toString().left(longestDetail).toStdString();
    return readParts(object, report.status) ? std::optional(report) : std::nullopt;
}

} // namespace farview
