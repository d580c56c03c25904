#include "Applications/Doctor/DoctorProgram.h"
#include "Applications/Doctor/Window/DoctorWindow.h"
#include "Applications/TerminationSignals.h"
#include "Controls/Qt/DesktopLook.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Looks/AppearancePortal.h"

#include <QApplication>

namespace
{

using namespace farview;

int run(const BusFacts& buses)
{
    DoctorProgram program(buses);
    std::function<void()> examine;
    DoctorWindow window({[&](const std::string& text) { return program.translated(text); },
                         [&] { examine(); }, [] { QApplication::quit(); }});
    examine = [&] {
        program.examine([&](Area area) { window.showArea(area); },
                        [&] { window.showReport(program.notebook().report()); });
    };
    const TerminationSignals termination([&] { window.close(); });
    DesktopLook look;
    AppearancePortal portal(program.sessionBus().connection(),
                            [&](const AppearancePreferences& wanted) { look.follow(wanted); });
    window.show();
    examine();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    // Before the toolkit, which would wait for a bus that does not answer.
    const BusFacts buses = checkBuses();
    const QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("farview-preferences"));
    return run(buses);
}
