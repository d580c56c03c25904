#include "Platform/Desktop/DetachedProcess.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace farview
{

qint64 startDetached(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("XDG_ACTIVATION_TOKEN"));
    environment.remove(QStringLiteral("DESKTOP_STARTUP_ID"));
    process.setProcessEnvironment(environment);
    qint64 pid = 0;
    return process.startDetached(&pid) ? pid : 0;
}

} // namespace farview
