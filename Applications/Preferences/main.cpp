#include "Applications/CommandLine.h"
#include "Applications/Preferences/PaneInterface.h"
#include "Applications/Preferences/PreferencesHost.h"
#include "Applications/Preferences/WindowOfTheSession.h"
#include "Applications/TerminationSignals.h"
#include "Common/NSURL_Additions.h"
#include "Controls/Qt/DesktopLook.h"
#include "Platform/Desktop/Looks/AppearancePortal.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Platform/SearchPaths.h"

#include <QApplication>
#include <QDir>
#include <QTextStream>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace
{

const auto exitStatuses = QStringLiteral(R"(
Exit status:
   0  done; also when the window of an earlier start was brought to the front
   2  wrong use
   3  there is no such pane
   4  the bundle has no Info.plist
   5  its Info.plist cannot be read
   6  it names no principal class, or one that its library has not
   7  its library was made for an older version of this program
   8  its library needs a newer version of this program
   9  its library is missing, is no pane's, or cannot be loaded
  10  its interface file is missing, damaged, or lacks something
  11  the pane does not accept its bundle
  12  the window of an earlier start does not answer
  13  there is no display)");

void print(std::FILE* file, const QString& text) { QTextStream(file) << text << Qt::endl; }

int fail(const HostError& error)
{
    if (error.status != HostStatus::success)
        print(stderr, u"farview-preferences: "_qs + error.message);
    return static_cast<int>(error.status);
}

const farview::CommandLine::Options& options()
{
    static const farview::CommandLine::Options list{
        {u"pane"_qs, u"The bundle to show instead of Farview's own"_qs, u"PATH"_qs},
        {u"list"_qs, u"Print the panes that were found, and end"_qs},
        {u"smoke-test"_qs, u"Go through a pane's whole life without starting programs or talking "
                           "to any, and end"_qs},
    };
    return list;
}

/// All preference panes of the user, of this computer and of the system, in this order.
QStringList findPanes(farview::SearchPaths& searchPaths)
{
    QStringList panes;
    const auto folders =
        searchPaths.directories(farview::SearchPathDirectory::preferencePanes,
                                farview::userDomain | farview::localDomain | farview::systemDomain);
    for (const auto& folder : folders) {
        const QDir directory(QString::fromStdString(folder));
        for (const QString& name : directory.entryList({u"*.prefPane"_qs}, QDir::Dirs, QDir::Name))
            panes += QDir::cleanPath(directory.absoluteFilePath(name));
    }
    return panes;
}

/// The pane to open: the one asked for (a path, perhaps a relative one), else the first of that
/// name in the search paths, else an empty text.
QString paneToOpen(const QString& asked, const QString& name, farview::SearchPaths& searchPaths)
{
    if (!asked.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(asked));
    for (const QString& pane : findPanes(searchPaths)) {
        if (pane.endsWith(u'/' + name))
            return pane;
    }
    return {};
}

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// Shows the pane twice, for a moment each, then quits the application.
class SmokeTest : public QObject
{
public:
    SmokeTest(PreferencesHost& host, QString bundlePath)
        : mHost(host), mBundlePath(std::move(bundlePath))
    {
    }

    /// Begins with the first showing. Its error is the result; the rest follows by itself.
    HostError start()
    {
        const HostError error = mHost.open(mBundlePath);
        if (error.status == HostStatus::success)
            QTimer::singleShot(timeOnShow, this, &SmokeTest::endShowing);
        return error;
    }

private:
    static constexpr int showings = 2;
    static constexpr std::chrono::milliseconds timeOnShow{150};

    void endShowing()
    {
        mHost.unselect();
        mHost.window().hide();
        if (++mShowings == showings)
            QCoreApplication::quit();
        else
            start();
    }

    PreferencesHost& mHost;
    QString mBundlePath;
    int mShowings = 0;
};

int runSmokeTest(const QString& pane, farview::Bundles& bundles)
{
    PreferencesHost host(PaneLoader(bundles, true));
    SmokeTest test(host, pane);
    const HostError error = test.start();
    return error.status == HostStatus::success ? QApplication::exec() : fail(error);
}

/// Whether this start is the one with the window. Else `error` is what the one with it has said.
bool becomeFirst(WindowOfTheSession& instance, PreferencesHost& host, const QString& wanted,
                 HostError& error)
{
    const QString token =
        qEnvironmentVariable("XDG_ACTIVATION_TOKEN", qEnvironmentVariable("DESKTOP_STARTUP_ID"));
    const auto show = [&host](const WindowOfTheSession::Wish& wish) {
        // First to the front, so that what may have to be said stands before it.
        host.window().bringToFront(wish.activationToken);
        return wish.pane.isEmpty() ? HostError{} : host.open(wish.pane);
    };
    bool first = false;
    instance.becomeFirst(show, [&](bool isFirst) {
        first = isFirst;
        if (isFirst)
            return QApplication::exit();
        instance.handOver({wanted, token}, [&](const HostError& said) {
            error = said;
            QApplication::exit();
        });
    });
    QApplication::exec();
    return first;
}

int runWindow(const QString& pane, const QString& asked, farview::Bundles& bundles,
              farview::Log& log)
{
    WindowOfTheSession instance(log);
    PreferencesHost host(PaneLoader(bundles, false));
    HostError error;
    if (!becomeFirst(instance, host, asked.isEmpty() ? QString() : pane, error))
        return fail(error);
    farview::DesktopLook look;
    farview::AppearancePortal portal(
        instance.bus(), [&](const farview::AppearancePreferences& wanted) { look.follow(wanted); });
    QObject::connect(&host, &PreferencesHost::showing, &portal,
                     &farview::AppearancePortal::tellWhatIsHere);
    const farview::TerminationSignals termination([&] {
        host.window().close();
        QApplication::quit();
    });
    error = host.open(pane);
    return error.status == HostStatus::success ? QApplication::exec() : fail(error);
}

int runApplication(int argc, char** argv, const farview::CommandLine& line, const QString& pane,
                   farview::Bundles& bundles, farview::Log& log)
{
    const QApplication application(argc, argv);
    QApplication::setApplicationName(u"farview-preferences"_qs);
    QApplication::setApplicationVersion(QStringLiteral(FARVIEW_VERSION));
    QGuiApplication::setDesktopFileName(u"farview-preferences"_qs);
    return line.has("smoke-test") ? runSmokeTest(pane, bundles)
                                  : runWindow(pane, line.value("pane"), bundles, log);
}

/// In the place of this process, as it was started: its window and its name on the bus have gone.
int startAnew(char** argv)
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    ::execv(program.c_str(), argv);
    return fail({HostStatus::usage, u"The program cannot be started anew."_qs});
}

} // namespace

int main(int argc, char* argv[])
{
    const farview::CommandLine line(farview::CommandLine::words(argc, argv),
                                    u"Shows a preference pane in a window."_qs, options(),
                                    exitStatuses);
    if (line.answer())
        return print(*line.answer());

    farview::StandardErrorLog log("farview-preferences");
    farview::PosixSearchPaths searchPaths(farview::EnvironmentUse::honoured);
    farview::PosixBundles bundles(farview::EnvironmentUse::honoured, log);
    if (line.has("list")) {
        for (const QString& each : findPanes(searchPaths))
            print(stdout, each);
        return 0;
    }
    const QString pane =
        paneToOpen(line.value("pane"), QString::fromLatin1(kPrefPaneName), searchPaths);
    if (pane.isEmpty())
        return fail({HostStatus::paneNotFound, u"No Farview preference pane is installed."_qs});
    if (line.has("smoke-test") && !hasDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay())
        return fail({HostStatus::noDisplay, u"There is no display to open a window on."_qs});

    const int status = runApplication(argc, argv, line, pane, bundles, log);
    return status == exitToStartAnew ? startAnew(argv) : status;
}
