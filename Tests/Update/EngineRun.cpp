#include "Tests/Update/EngineRun.h"

#include "Tests/Support/WaitUntil.h"

#include <QJsonDocument>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <sys/prctl.h>

namespace farview
{
namespace
{

constexpr std::chrono::seconds longestRun{90};

} // namespace

EngineRun::EngineRun(const std::vector<std::string>& arguments, const Environment& environment,
                     const std::vector<std::string>& wrapper)
{
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY",
                             "ALL_PROXY", "SSL_CERT_FILE"})
        variables.remove(QLatin1String(name));
    for (const auto& [name, value] : environment)
        variables.insert(QString::fromStdString(name), QString::fromStdString(value));
    QStringList command;
    for (const auto& word : wrapper)
        command += QString::fromStdString(word);
    command += QStringLiteral(FARVIEW_UPDATE_ENGINE);
    for (const auto& word : arguments)
        command += QString::fromStdString(word);
    mProcess.setProcessEnvironment(variables);
    mProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    mProcess.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    QObject::connect(&mProcess, &QProcess::readyReadStandardOutput, &mProcess, [this] { read(); });
    const QString program = command.takeFirst();
    mProcess.start(program, command);
}

EngineRun::~EngineRun()
{
    mProcess.kill();
    mProcess.waitForFinished();
}

void EngineRun::read()
{
    const QByteArray bytes = mProcess.readAllStandardOutput();
    mPrinted += bytes;
    mLine += bytes;
    for (auto end = mLine.indexOf('\n'); end >= 0; end = mLine.indexOf('\n')) {
        mEvents.push_back(QJsonDocument::fromJson(mLine.left(end)).object());
        mLine.remove(0, end + 1);
    }
}

void EngineRun::say(const std::string& word)
{
    mProcess.write(QByteArray::fromStdString(word + "\n"));
}

bool EngineRun::hasSaid(const std::string& event) const
{
    return std::any_of(mEvents.begin(), mEvents.end(), [&](const QJsonObject& each) {
        return each["event"].toString().toStdString() == event;
    });
}

bool EngineRun::says(const std::string& event)
{
    waitUntil([&] { return hasSaid(event) || mProcess.state() == QProcess::NotRunning; },
              longestRun);
    return hasSaid(event);
}

int EngineRun::status()
{
    waitUntil([&] { return mProcess.state() == QProcess::NotRunning; }, longestRun);
    const bool hasEnded =
        mProcess.state() == QProcess::NotRunning && mProcess.exitStatus() == QProcess::NormalExit;
    return hasEnded ? mProcess.exitCode() : -1;
}

std::string EngineRun::outcome()
{
    status();
    const auto event = last()["event"].toString();
    return (event == QLatin1String("failed") ? last()["reason"].toString() : event).toStdString();
}

} // namespace farview
