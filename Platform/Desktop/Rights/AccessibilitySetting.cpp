#include "Platform/Desktop/Rights/AccessibilitySetting.h"

#include <QProcess>
#include <QTimer>

#include <chrono>
#include <utility>

namespace farview
{
namespace
{

constexpr std::chrono::seconds limit{5};
constexpr qint64 longestOutput = 100; // the answers are "true" and "false"

QStringList about(const char* verb)
{
    return {QString::fromLatin1(verb), QStringLiteral("org.gnome.desktop.interface"),
            QStringLiteral("toolkit-accessibility")};
}

QString word(bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); }

} // namespace

void AccessibilitySetting::isThere(Answer answer)
{
    run(about("writable"),
        [answer = std::move(answer)](const Output& output) { answer(output == word(true)); });
}

void AccessibilitySetting::store(bool on, Answer answer)
{
    run(about("set") << word(on), [this, on, answer = std::move(answer)](const Output& output) {
        if (!output) {
            answer(false);
            return;
        }
        run(about("get"), [on, answer](const Output& stored) { answer(stored == word(on)); });
    });
}

void AccessibilitySetting::run(const QStringList& words, std::function<void(const Output&)> done)
{
    auto* tool = new QProcess(this);
    const auto end = [this, tool, done = std::move(done)] {
        tool->disconnect(this);
        const bool succeeded = tool->exitStatus() == QProcess::NormalExit &&
                               tool->exitCode() == 0 && tool->error() == QProcess::UnknownError;
        tool->deleteLater();
        done(succeeded ? Output(QString::fromUtf8(tool->read(longestOutput)).trimmed())
                       : std::nullopt);
    };
    connect(tool, &QProcess::finished, this, end);
    connect(tool, &QProcess::errorOccurred, this, [tool, end] {
        if (tool->state() == QProcess::NotRunning)
            end();
    });
    QTimer::singleShot(limit, tool, &QProcess::kill);
    tool->setStandardInputFile(QProcess::nullDevice());
    tool->setStandardErrorFile(QProcess::nullDevice());
    tool->start(QStringLiteral("gsettings"), words);
}

} // namespace farview
