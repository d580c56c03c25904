#include "Platform/Desktop/Screens/KWin/WindowMove.h"

#include "Platform/Posix/FileDescriptor.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

constexpr Duration longestMove{1.0};
constexpr Duration pause{0.02};

const QString service = QStringLiteral("org.kde.KWin");
const QString path = QStringLiteral("/Scripting");
const QString scripting = QStringLiteral("org.kde.kwin.Scripting");
const QString name = QStringLiteral("farview-windows");

std::string corner(PixelPoint place)
{
    return std::to_string(place.x) + ", " + std::to_string(place.y);
}

} // namespace

/// KWin 5 has numbers for screens, KWin 6 objects.
std::string windowMoveScript(PixelPoint from, PixelPoint to)
{
    return R"(const isNumbered = typeof workspace.windowList !== "function";
function areaOf(screen) {
    return isNumbered ? workspace.clientArea(KWin.ScreenArea, screen, workspace.currentDesktop) : screen.geometry;
}
function isAt(screen, x, y) {
    return areaOf(screen).x === x && areaOf(screen).y === y;
}
let target = null;
const screens = isNumbered ? workspace.numScreens : workspace.screens.length;
for (let index = 0; index < screens; ++index) {
    const screen = isNumbered ? index : workspace.screens[index];
    if (isAt(screen, )" +
           corner(to) + R"())
        target = screen;
}
for (const window of isNumbered ? workspace.clientList() : workspace.windowList()) {
    if (target !== null && window.normalWindow && isAt(isNumbered ? window.screen : window.output, )" +
           corner(from) + R"())
        workspace.sendClientToScreen(window, target);
}
callDBus("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "unloadScript", "farview-windows");
)";
}

WindowMove::WindowMove(RunLoop& loop, SessionBus& bus, std::function<void()> then)
    : mLoop(loop), mBus(bus), mThen(std::move(then))
{
}

WindowMove::~WindowMove()
{
    if (!mFile.empty())
        ::unlink(mFile.c_str());
}

void WindowMove::begin(PixelPoint from, PixelPoint to)
{
    std::error_code error;
    std::string file = std::filesystem::temp_directory_path(error) / "farview-windows-XXXXXX";
    const FileDescriptor script(::mkstemp(file.data()));
    mLoop.performAfterDelay(longestMove, weak_from_this(), [this] { conclude(); });
    if (!script.isOpen())
        return;
    mFile = file;
    if (writeAll(script.get(), windowMoveScript(from, to)) != 0)
        return;
    // One that was broken off before may be there.
    call("unloadScript", {name}, [](auto&) {});
    call("loadScript", {QString::fromStdString(file), name}, [](auto&) {});
    call("start", {}, [this](auto&) { look(); });
}

void WindowMove::call(const char* member, const QVariantList& arguments,
                      std::function<void(const QDBusMessage&)> then)
{
    auto message = QDBusMessage::createMethodCall(service, path, scripting, QLatin1String(member));
    message.setArguments(arguments);
    message.setAutoStartService(false);
    mBus.ask(message, this, std::move(then));
}

void WindowMove::look()
{
    call("isScriptLoaded", {name}, [this](const QDBusMessage& reply) {
        if (reply.signature() == u"b" && reply.arguments().at(0).toBool())
            mLoop.performAfterDelay(pause, weak_from_this(), [this] { look(); });
        else
            conclude();
    });
}

void WindowMove::conclude()
{
    if (const auto then = std::exchange(mThen, nullptr))
        then();
}

} // namespace farview
