#include "Platform/Desktop/Programs/ApplicationLauncher.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"

#include <QDBusMessage>
#include <QFileInfo>

#include <csignal>
#include <optional>
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

} // namespace

ApplicationLauncher::ApplicationLauncher(SessionBus& bus, Bundles& bundles, const RunLoop& clock,
                                         Log& log)
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

bool ApplicationLauncher::launch(const std::string& bundlePath)
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

std::optional<ApplicationLauncher::Application>
ApplicationLauncher::applicationAt(const std::string& bundlePath) const
{
    const auto bundle = bundlePath.empty() ? nullptr : mBundles.bundleWithPath(bundlePath);
    if (!bundle)
        return std::nullopt;
    const std::string name = textFrom(*bundle, "CFBundleExecutable");
    if (name.empty() || name.find('/') != std::string::npos)
        return std::nullopt;
    const QFileInfo file(QString::fromStdString(bundle->bundlePath() + "/Contents/Linux/" + name));
    if (!file.isFile() || !file.isExecutable())
        return std::nullopt;
    const std::string identifier = textFrom(*bundle, "CFBundleIdentifier");
    return Application{file.absoluteFilePath(), QString::fromStdString(applicationBusName(
                                                    identifier.empty() ? name : identifier))};
}

bool ApplicationLauncher::isUnderWay(const QString& busName)
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

void ApplicationLauncher::askRunningOne(const Application& application)
{
    auto call =
        QDBusMessage::createMethodCall(application.busName, SingleInstance::objectPath,
                                       SingleInstance::interfaceName, QStringLiteral("isStaying"));
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
void ApplicationLauncher::useSilence(const Application& application)
{
    mBus.askForOwner(application.busName, this, [this, application](bool isOwned) {
        if (mBus.isConnected())
            useAnswer(application, isOwned);
        else
            startUnlessItRuns(application);
    });
}

void ApplicationLauncher::useAnswer(const Application& application, bool runs)
{
    if (!runs) {
        start(application);
        return;
    }
    finish(application.busName);
}

/// The application has taken its name.
void ApplicationLauncher::isUp(const QString& busName)
{
    const auto found = mStarts.find(busName);
    if (found == mStarts.end() || found->second.pid == 0)
        return;
    found->second.pid = 0;
    finish(busName);
}

/// The application runs. It may have been asked to quit before a launch that came meanwhile.
void ApplicationLauncher::finish(const QString& busName)
{
    auto& start = mStarts[busName];
    if (std::exchange(start.isWantedAgain, false))
        askRunningOne(start.application);
    else
        mStarts.erase(busName);
}

/// Without a bus nobody can be asked. One that runs cannot be told to quit either, so it stays.
void ApplicationLauncher::startUnlessItRuns(const Application& application)
{
    if (isRunningDetached(application.executable))
        mStarts.erase(application.busName);
    else
        start(application);
}

void ApplicationLauncher::start(const Application& application)
{
    const qint64 pid = startDetached(application.executable, {});
    if (pid > 0) {
        mStarts[application.busName] = {application, pid, mClock.now(), false};
        return;
    }
    mStarts.erase(application.busName);
    mLog.write(LogLevel::error, "Cannot start " + application.executable.toStdString());
}

} // namespace farview
