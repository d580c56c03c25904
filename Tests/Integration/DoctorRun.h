#pragma once

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace farview
{

/// One run of farview-doctor, from its start to its end.
class DoctorRun
{
public:
    DoctorRun(const ChildProcess::Environment& environment,
              const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command{
            "sh", "-c", "exec \"$0\" \"$@\" >'" + mFolder.path("out") + "' 2>&1", FARVIEW_DOCTOR};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ChildProcess process(command, environment);
        mStatus = process.waitForEnd(std::chrono::seconds(20));
        QFile file(QString::fromStdString(mFolder.path("out")));
        file.open(QIODevice::ReadOnly);
        mOutput = file.readAll();
        mReport = QJsonDocument::fromJson(mOutput).object();
    }

    /// Minus one when it did not end by itself.
    int status() const { return mStatus && WIFEXITED(*mStatus) ? WEXITSTATUS(*mStatus) : -1; }
    std::string output() const { return mOutput.toStdString(); }
    std::string verdict() const { return mReport["verdict"].toString().toStdString(); }

    /// The finding of that identifier; nothing when there is none.
    std::optional<QJsonObject> finding(const char* identifier) const
    {
        for (const QJsonValue each : mReport["findings"].toArray()) {
            if (each["id"].toString() == QLatin1String(identifier))
                return each.toObject();
        }
        return std::nullopt;
    }
    bool finds(const char* identifier) const { return finding(identifier).has_value(); }
    std::string detail(const char* identifier, const char* name) const
    {
        const auto found = finding(identifier).value_or(QJsonObject());
        return found["details"][QLatin1String(name)].toString().toStdString();
    }

private:
    TemporaryFolder mFolder;
    std::optional<int> mStatus;
    QByteArray mOutput;
    QJsonObject mReport;
};

} // namespace farview
