#include "Applications/Preferences/HeadStart.h"
#include "Applications/Preferences/PaneInterface.h"
#include "Applications/Preferences/PaneSearch.h"
#include "Applications/Preferences/PreferencesHost.h"
#include "Applications/Preferences/SmokeTest.h"
#include "Applications/Preferences/WindowOfTheSession.h"
#include "Applications/TerminationSignals.h"
#include "Common/NSURL_Additions.h"
#include "Controls/Qt/DesktopLook.h"
#include "Platform/Desktop/Looks/AppearancePortal.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/PosixSearchPaths.h"
#include "Platform/Posix/StandardErrorLog.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace
{

constexpr auto exitStatuses = R"(
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
  13  there is no display)";

struct Options {
    QString pane;
    bool list = false;
    bool smokeTest = false;
};

void print(std::FILE* file, const QString& text) { QTextStream(file) << text << Qt::endl; }

int fail(const HostError& error)
{
    if (error.status != HostStatus::success)
        print(stderr, u"farview-preferences: "_qs + error.message);
    return static_cast<int>(error.status);
}

QString helpText(const QCommandLineParser& parser)
{
    // The parser knows the program's name only where there is an application object.
    return parser.helpText().replace(u"<executable_name>"_qs, u"farview-preferences"_qs) +
           QString::fromLatin1(exitStatuses);
}

/// Nothing when the program ends here; `status` then says how.
std::optional<Options> parse(const QStringList& arguments, int& status)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Shows a preference pane in a window."_qs);
    parser.addOption({u"pane"_qs, u"The bundle to show instead of Farview's own."_qs, u"PATH"_qs});
    parser.addOption({u"list"_qs, u"Print the panes that were found, and end."_qs});
    parser.addOption({u"smoke-test"_qs, u"Go through a pane's whole life without starting "
                                        "programs or talking to any, and end."_qs});
    parser.addOption({{u"h"_qs, u"help"_qs}, u"Print this help."_qs});
    parser.addOption({{u"v"_qs, u"version"_qs}, u"Print the version."_qs});
    const bool parsed = parser.parse(arguments) && parser.positionalArguments().isEmpty();
    status = static_cast<int>(parsed ? HostStatus::success : HostStatus::usage);
    if (!parsed)
        print(stderr, parser.positionalArguments().isEmpty() ? parser.errorText()
                                                             : u"Unexpected argument."_qs);
    else if (parser.isSet(u"help"_qs))
        print(stdout, helpText(parser));
    else if (parser.isSet(u"version"_qs))
        print(stdout, QStringLiteral("farview-preferences " FARVIEW_VERSION));
    else
        return Options{parser.value(u"pane"_qs), parser.isSet(u"list"_qs),
                       parser.isSet(u"smoke-test"_qs)};
    return std::nullopt;
}

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

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

int runApplication(int& argc, char** argv, const Options& options, const QString& pane,
                   farview::Bundles& bundles, farview::Log& log)
{
    HeadStart headStart(pane);
    QApplication application(argc, argv);
    const std::jthread rest = headStart.goOn();
    QApplication::setApplicationName(u"farview-preferences"_qs);
    QApplication::setApplicationVersion(QStringLiteral(FARVIEW_VERSION));
    QGuiApplication::setDesktopFileName(u"farview-preferences"_qs);
    return options.smokeTest ? runSmokeTest(pane, bundles)
                             : runWindow(pane, options.pane, bundles, log);
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
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    int status = 0;
    const auto options = parse(arguments, status);
    if (!options)
        return status;

    farview::StandardErrorLog log("farview-preferences");
    farview::PosixSearchPaths searchPaths(farview::EnvironmentUse::honoured);
    farview::PosixBundles bundles(farview::EnvironmentUse::honoured, log);
    if (options->list) {
        for (const QString& each : findPanes(searchPaths))
            print(stdout, each);
        return status;
    }
    const QString pane = paneToOpen(options->pane, QString::fromLatin1(kPrefPaneName), searchPaths);
    if (pane.isEmpty())
        return fail({HostStatus::paneNotFound, u"No Farview preference pane is installed."_qs});
    if (options->smokeTest && !hasDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay())
        return fail({HostStatus::noDisplay, u"There is no display to open a window on."_qs});

    status = runApplication(argc, argv, *options, pane, bundles, log);
    return status == exitToStartAnew ? startAnew(argv) : status;
}
