#include "Platform/Desktop/Programs/DesktopWorkspace.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Programs/DetachedProcess.h"

#include <QCoreApplication>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>

namespace farview
{
namespace
{

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

DesktopWorkspace::DesktopWorkspace(SessionBus& bus, Bundles& bundles, const RunLoop& clock,
                                   Log& log)
    : mBus(bus), mLauncher(bus, bundles, clock, log)
{
}

bool DesktopWorkspace::launchApplicationAtURL(const URL& url, unsigned)
{
    return mLauncher.launch(url.path());
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
