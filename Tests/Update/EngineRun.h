#pragma once

#include <QJsonObject>
#include <QProcess>

#include <map>
#include <string>
#include <vector>

namespace farview
{

/// One run of farview-update. Killed with the object.
class EngineRun
{
public:
    using Environment = std::map<std::string, std::string>;

    /// `wrapper` is a command before the program's own, if any.
    EngineRun(const std::vector<std::string>& arguments, const Environment& environment,
              const std::vector<std::string>& wrapper = {});
    ~EngineRun();
    EngineRun(const EngineRun&) = delete;
    EngineRun& operator=(const EngineRun&) = delete;

    void say(const std::string& word);
    void closeInput() { mProcess.closeWriteChannel(); }
    /// As nobody can refuse.
    void kill() { mProcess.kill(); }
    QProcess& process() { return mProcess; }

    /// Waits until it has said that, or ended without it.
    bool says(const std::string& event);
    bool hasSaid(const std::string& event) const;
    /// Waits for its end; minus one when it does not end or was killed.
    int status();
    /// What it said, event after event.
    const std::vector<QJsonObject>& events() const { return mEvents; }
    QJsonObject last() const { return mEvents.empty() ? QJsonObject() : mEvents.back(); }
    /// Waits for its end; the reason of its failure, or its last event when it did not fail.
    std::string outcome();
    /// Everything it printed, for messages of tests.
    std::string printed() const { return mPrinted.toStdString(); }

private:
    void read();

    QProcess mProcess;
    QByteArray mLine;
    QByteArray mPrinted;
    std::vector<QJsonObject> mEvents;
};

} // namespace farview
