#include "Applications/Preferences/HeadStart.h"

#include "Applications/Preferences/PaneLoader.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <QDBusConnection>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>
#include <QThread>

#include <fontconfig/fontconfig.h>

namespace
{

/// Empty when the bundle does not tell.
QString executableOf(const QString& bundlePath)
{
    const auto file =
        farview::readDictionaryFile(bundlePath.toStdString() + "/Contents/Info.plist");
    if (!file.list)
        return {};
    const auto& info = *file.list->get<farview::PropertyList::Dictionary>();
    const auto found = info.find("CFBundleExecutable");
    const auto* name = found == info.end() ? nullptr : found->second.get<std::string>();
    return name ? QString::fromStdString(*name) : QString();
}

} // namespace

HeadStart::HeadStart(const QString& bundlePath)
{
    // The toolkit takes the first thread that it meets for the main one.
    QThread::currentThread();
    mFirst = std::thread([bundlePath] {
        FcInit();
        if (const QString executable = executableOf(bundlePath); !executable.isEmpty())
            PaneLoader::loadLibraryAhead(bundlePath, executable);
    });
}

HeadStart::~HeadStart()
{
    if (mFirst.joinable())
        mFirst.join();
}

std::jthread HeadStart::goOn()
{
    return std::jthread([this] {
        // The library reads its configuration twice for two who ask for it at once.
        mFirst.join();
        QFontDatabase::families();
        // The first text finds the font's file, and which fonts stand in for what it lacks.
        QFontMetricsF(QFont()).horizontalAdvance(u'x');
        // The toolkit's own connection: the first tab view asks there for assistive technology.
        QDBusConnection::sessionBus();
    });
}
