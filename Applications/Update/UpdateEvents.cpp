#include "Applications/Update/UpdateEvents.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace farview
{
namespace
{

QString text(const std::string& value) { return QString::fromStdString(value); }

qint64 number(std::uint64_t value) { return static_cast<qint64>(value); }

} // namespace

void UpdateEvents::checking() { say("checking", {}); }

void UpdateEvents::current(const std::string& version, const std::string& offered)
{
    say("current", {{"version", text(version)}, {"offered", text(offered)}});
}

void UpdateEvents::found(const UpdateItem& item)
{
    say("found", {{"version", text(item.version)},
                  {"notes", text(item.notes)},
                  {"length", number(item.length)}});
}

void UpdateEvents::downloading(std::uint64_t received, std::uint64_t length)
{
    say("downloading", {{"received", number(received)}, {"length", number(length)}});
}

void UpdateEvents::verifying() { say("verifying", {}); }

void UpdateEvents::ready(const std::string& version) { say("ready", {{"version", text(version)}}); }

void UpdateEvents::installing() { say("installing", {}); }

void UpdateEvents::installed(const std::string& version)
{
    say("installed", {{"version", text(version)}});
}

void UpdateEvents::cancelled() { say("cancelled", {}); }

void UpdateEvents::failed(const UpdateFailure& failure)
{
    say("failed",
        {{"reason", text(std::string(wordOf(failure.problem)))}, {"detail", text(failure.detail)}});
}

void UpdateEvents::say(const char* event, QJsonObject details)
{
    details["event"] = event;
    const QByteArray line = QJsonDocument(details).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), mOutput);
    std::fflush(mOutput);
}

} // namespace farview
