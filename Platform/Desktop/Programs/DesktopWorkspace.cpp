#include "Platform/Desktop/Programs/DesktopWorkspace.h"

#include "Platform/Bundle.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"
#include "Platform/Log.h"
#include "Platform/RunLoop.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>

#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace farview
{
namespace
{

/// How long an application may take from its start to its bus name.
constexpr Duration longestStart{5.0};
/// How long the running one may take to say whether it stays; one that hangs is running.
constexpr int answerLimit = 2000; // milliseconds

std::string textFrom(const Bundle& bundle, const char* key)
{
    const auto value = bundle.objectForInfoDictionaryKey(key);
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? *text : std::string();
}

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
constexpr int portalLimit = 5000; // milliseconds

bool isProgram(const QFileInfo& file) { return file.isFile() && file.isExecutable(); }

/// The program in a "bin" of the folders above a bundle: a program that a pane carries belongs to
/// the installation around it. Empty when this program is in no bundle, or there is none.
QString findAboveBundle(const QString& name)
{
    const QString here = QCoreApplication::applicationDirPath();
    const auto contents = here.indexOf(QStringLiteral("/Contents/"));
    if (contents < 0)
        return {};
    QDir folder(here.left(contents));
    while (folder.cdUp()) {
        const QFileInfo installed(folder.filePath(QStringLiteral("bin/") + name));
        if (isProgram(installed))
            return installed.absoluteFilePath();
    }
    return {};
}

/// The program beside the running one, else above its bundle, else in PATH; empty when there is
/// none.
QString findProgram(const QString& name)
{
    const QFileInfo beside(QDir(QCoreApplication::applicationDirPath()).filePath(name));
    if (isProgram(beside))
        return beside.absoluteFilePath();
    if (const QString above = findAboveBundle(name); !above.isEmpty())
        return above;
    return QStandardPaths::findExecutable(name);
}

QDBusMessage portalCall(const QString& member)
{
    return QDBusMessage::createMethodCall(portalName,
                                          QStringLiteral("/org/freedesktop/portal/desktop"),
                                          QStringLiteral("org.freedesktop.portal.OpenURI"), member);
}

/// The portal takes files by descriptor and everything else by address. An invalid message when the
/// file cannot be opened.
QDBusMessage portalCallFor(const URL& url)
{
    const QString parentWindow;
    if (!url.isFileURL())
        return portalCall(QStringLiteral("OpenURI"))
               << parentWindow << QString::fromStdString(url.absoluteString()) << QVariantMap();
    QFile file(QString::fromStdString(url.path()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return portalCall(QStringLiteral("OpenFile"))
           << parentWindow << QVariant::fromValue(QDBusUnixFileDescriptor(file.handle()))
           << QVariantMap();
}

QString addressOf(const URL& url)
{
    return url.isFileURL() ? QUrl::fromLocalFile(QString::fromStdString(url.path()))
                                 .toString(QUrl::FullyEncoded)
                           : QString::fromStdString(url.absoluteString());
}

/// An address that a program could take for an option, or that leads nowhere, is not handed on.
bool canBeOpened(const URL& url)
{
    if (url.isFileURL())
        return QFileInfo::exists(QString::fromStdString(url.path()));
    const QUrl parsed(QString::fromStdString(url.absoluteString()), QUrl::StrictMode);
    return parsed.isValid() && !parsed.scheme().isEmpty();
}

} // namespace

/// Starts application bundles, each at most once in the session.
///
/// An application that runs and stays is not started again; one that has been asked to quit is, and
/// so is one that has died. The running one is asked itself, over the bus, so a request to quit
/// that was posted before counts. Between the start and the moment the application takes its bus
/// name, further launches start nothing; it is asked as soon as it has its name.
class ApplicationLauncher : public QObject
{
public:
    /// The references must outlive this.
    ApplicationLauncher(SessionBus& bus, Bundles& bundles, const RunLoop& clock, Log& log)
        : mBus(bus), mBundles(bundles), mClock(clock), mLog(log)
    {
        mNameWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        connect(&mNameWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                [this](const QString& name, const QString&, const QString& owner) {
                    if (!owner.isEmpty())
                        isUp(name);
                });
        connect(&mBus, &SessionBus::connected, this,
                [this] { mNameWatcher.setConnection(mBus.connection()); });
        mNameWatcher.setConnection(mBus.connection());
    }

    /// False when there is no application in that folder, or none that can be executed. The start
    /// itself may follow on a later turn.
    bool launch(const std::string& bundlePath)
    {
        const auto application = applicationAt(bundlePath);
        if (!application)
            return false;
        if (isUnderWay(application->busName))
            return true;
        mNameWatcher.addWatchedService(application->busName);
        mStarts[application->busName] = {*application, 0, mClock.now(), false};
        askRunningOne(*application);
        return true;
    }

private:
    struct Application {
        QString executable;
        QString busName;
    };
    /// A start that is under way.
    struct Start {
        Application application;
        qint64 pid = 0; ///< 0 while the running one is being asked
        Duration begun{};
        bool isWantedAgain = false; ///< another launch came meanwhile
    };

    std::optional<Application> applicationAt(const std::string& bundlePath) const
    {
        const auto bundle = bundlePath.empty() ? nullptr : mBundles.bundleWithPath(bundlePath);
        if (!bundle)
            return std::nullopt;
        const std::string name = textFrom(*bundle, "CFBundleExecutable");
        if (name.empty() || name.find('/') != std::string::npos)
            return std::nullopt;
        const QFileInfo file(
            QString::fromStdString(bundle->bundlePath() + "/Contents/Linux/" + name));
        if (!file.isFile() || !file.isExecutable())
            return std::nullopt;
        const std::string identifier = textFrom(*bundle, "CFBundleIdentifier");
        return Application{file.absoluteFilePath(), QString::fromStdString(applicationBusName(
                                                        identifier.empty() ? name : identifier))};
    }

    bool isUnderWay(const QString& busName)
    {
        const auto found = mStarts.find(busName);
        if (found == mStarts.end())
            return false;
        auto& start = found->second;
        start.isWantedAgain = true;
        const bool isGone = start.pid > 0 && ::kill(static_cast<pid_t>(start.pid), 0) != 0;
        // Without a bus no name ever tells that it runs; that its process lives has to do.
        return !isGone && (!mBus.isConnected() || mClock.now() - start.begun < longestStart);
    }

    void askRunningOne(const Application& application)
    {
        auto call = QDBusMessage::createMethodCall(application.busName, SingleInstance::objectPath,
                                                   SingleInstance::interfaceName,
                                                   QStringLiteral("isStaying"));
        call.setAutoStartService(false);
        mBus.ask(
            call, this,
            [this, application](const QDBusMessage& reply) {
                if (reply.signature() == u"b")
                    useAnswer(application, reply.arguments().at(0).toBool());
                else
                    useSilence(application);
            },
            answerLimit);
    }

    /// Tells one that hangs, which runs, from one that has just died.
    void useSilence(const Application& application)
    {
        mBus.askForOwner(application.busName, this, [this, application](const QString& owner) {
            if (mBus.isConnected())
                useAnswer(application, !owner.isEmpty());
            else
                startUnlessItRuns(application);
        });
    }

    /// The application has taken its name.
    void isUp(const QString& busName)
    {
        const auto found = mStarts.find(busName);
        if (found == mStarts.end() || found->second.pid == 0)
            return;
        found->second.pid = 0;
        finish(busName);
    }

    /// The application runs. It may have been asked to quit before a launch that came meanwhile.
    void finish(const QString& busName)
    {
        auto& start = mStarts[busName];
        if (std::exchange(start.isWantedAgain, false))
            askRunningOne(start.application);
        else
            mStarts.erase(busName);
    }

    void useAnswer(const Application& application, bool runs)
    {
        if (!runs) {
            start(application);
            return;
        }
        finish(application.busName);
    }

    /// Without a bus nobody can be asked. One that runs cannot be told to quit either, so it stays.
    void startUnlessItRuns(const Application& application)
    {
        if (isRunningDetached(application.executable))
            mStarts.erase(application.busName);
        else
            start(application);
    }

    void start(const Application& application)
    {
        const qint64 pid = startDetached(application.executable, {});
        if (pid > 0) {
            mStarts[application.busName] = {application, pid, mClock.now(), false};
            return;
        }
        mStarts.erase(application.busName);
        mLog.write(LogLevel::error, "Cannot start " + application.executable.toStdString());
    }

    SessionBus& mBus;
    Bundles& mBundles;
    const RunLoop& mClock;
    Log& mLog;
    std::map<QString, Start> mStarts;
    QDBusServiceWatcher mNameWatcher;
};

DesktopWorkspace::DesktopWorkspace(SessionBus& bus, Bundles& bundles, const RunLoop& clock,
                                   Log& log)
    : mBus(bus), mLauncher(std::make_unique<ApplicationLauncher>(bus, bundles, clock, log))
{
}

DesktopWorkspace::~DesktopWorkspace() = default;

bool DesktopWorkspace::launchApplicationAtURL(const URL& url, unsigned)
{
    return mLauncher->launch(url.path());
}

bool DesktopWorkspace::openURL(const URL& url)
{
    if (!canBeOpened(url))
        return false;
    if (url.isFileURL() && url.path().ends_with(".prefPane"))
        return openPane(QString::fromStdString(url.path()));
    return mBus.isConnected() ? openInPortal(url) : openWithDesktopOpener(addressOf(url));
}

bool DesktopWorkspace::openInPortal(const URL& url)
{
    const auto call = portalCallFor(url);
    if (call.type() != QDBusMessage::MethodCallMessage)
        return false;
    const auto openOtherwise = [this, address = addressOf(url)](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ReplyMessage)
            openWithDesktopOpener(address);
    };
    mBus.ask(call, this, openOtherwise, portalLimit);
    return true;
}

bool DesktopWorkspace::openPane(const QString& path)
{
    const QString host = findProgram(QStringLiteral("farview-preferences"));
    return !host.isEmpty() && startDetached(host, {QStringLiteral("--pane"), path}) > 0;
}

bool DesktopWorkspace::openWithDesktopOpener(const QString& address)
{
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    return !opener.isEmpty() && startDetached(opener, {address}) > 0;
}

} // namespace farview
