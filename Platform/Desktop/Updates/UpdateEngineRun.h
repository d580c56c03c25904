#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>

namespace farview
{

/// One run of the update engine: hands over its lines, tells it what to do. Nothing waits for it,
/// and nothing of it is kept that is larger than `longestLine`. Made with `new`; it deletes itself
/// when the engine has ended and nobody holds it. Main thread only.
class UpdateEngineRun : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype longestLine = 256 * 1024;

    UpdateEngineRun(const QString& program, const QStringList& arguments);
    ~UpdateEngineRun() override;

    void send(const char* word);
    /// From now on it runs to its end, whatever becomes of this process.
    void sendInstall();
    /// Nobody listens to it any more. It is told to give up, and ended when it does not; once it
    /// installs it is left alone. This object is not to be used afterwards.
    void letGo();

Q_SIGNALS:
    void saidLine(const QByteArray& line);
    /// It ended; nothing comes any more. Also when it could not be started.
    void ended(const QString& how);

private:
    void read();
    void refuseLongLine();
    void end(const QString& how);

    QProcess mProcess;
    QByteArray mLine;
    bool mIsInstalling = false;
    bool mIsOver = false;
    bool mIsLetGo = false;
};

} // namespace farview
