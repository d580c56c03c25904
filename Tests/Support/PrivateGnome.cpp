#include "Tests/Support/PrivateGnome.h"

#include "Tests/Support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QString kDisplayConfig = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const QString kDisplayConfigPath = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString kRemoteDesktop = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
const QString kRemoteDesktopPath = QStringLiteral("/org/gnome/Mutter/RemoteDesktop");
const QString kRemoteSession = QStringLiteral("org.gnome.Mutter.RemoteDesktop.Session");

const QString kConnectionName = QStringLiteral("gnome-arranger");

QDBusConnection connectionTo(const std::string& address)
{
    return QDBusConnection::connectToBus(QString::fromStdString(address), kConnectionName);
}

bool hasOwners(const std::string& address)
{
    const auto connection = connectionTo(address);
    bool hasAll = connection.isConnected();
    for (const char* name : {"DisplayConfig", "RemoteDesktop", "ScreenCast"})
        hasAll = hasAll && connection.interface()->isServiceRegistered(
                               QStringLiteral("org.gnome.Mutter.") + QLatin1String(name));
    QDBusConnection::disconnectFromBus(kConnectionName);
    return hasAll;
}

} // namespace

PrivateGnome::PrivateGnome(const std::vector<std::string>& monitors, const std::string& settings)
    : mPipeWire(start("pipewire"))
{
    mFolder.write("glib-2.0/settings/keyfile", settings);
    const auto limit = std::chrono::seconds(30);
    const auto exists = [this](const char* socket) {
        return [path = mFolder.path(socket)] { return std::filesystem::exists(path); };
    };
    if (!waitUntil(exists("pipewire-0"), limit))
        throw std::runtime_error("no PipeWire");
    mSessionManager = start("wireplumber");
    std::string command = "mutter --headless --wayland --no-x11 --wayland-display=wayland-test";
    for (const auto& monitor : monitors)
        command += " --virtual-monitor " + monitor;
    mMutter = start(command);
    if (!waitUntil(exists("wayland-test"), limit) ||
        !waitUntil([this] { return hasOwners(mBus.address()); }, limit))
        throw std::runtime_error("no Mutter");
}

std::unique_ptr<ChildProcess> PrivateGnome::start(const std::string& command)
{
    const auto log = mFolder.path(command.substr(0, command.find(' ')) + ".log");
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c", "exec " + command + " >'" + log + "' 2>&1"});
}

GnomeArranger::GnomeArranger(PrivateGnome& desktop, bool hasMouse)
    : mConnection(connectionTo(desktop.bus().address()))
{
    // No end of the pipe stays open in other programs that the test starts.
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    mCommands = ends[1];
    const auto reader = std::to_string(ends[0]);
    ::fcntl(ends[0], F_SETFD, 0);
    mPainter = std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c",
                                 "exec " FARVIEW_SCREEN_PAINTER " <&" + reader + " " + reader +
                                     "<&- >'" + mFolder.path("input") + "'"});
    ::close(ends[0]);
    mConnection.connect(kDisplayConfig, kDisplayConfigPath, kDisplayConfig,
                        QStringLiteral("MonitorsChanged"), this, SLOT(noticeArrangement()));
    if (hasMouse)
        bePointer();
}

/// From the beginning: programs lose the first motion on a seat that has no pointer yet.
void GnomeArranger::bePointer()
{
    const auto reply =
        call(kRemoteDesktop, kRemoteDesktopPath, kRemoteDesktop, QStringLiteral("CreateSession"));
    mPointer = reply.arguments().value(0).value<QDBusObjectPath>().path();
    call(kRemoteDesktop, mPointer, kRemoteSession, QStringLiteral("Start"));
    // Into the corner, wherever it was.
    movePointer(-20000, -20000);
    mPointerX = 0;
    mPointerY = 0;
}

GnomeArranger::~GnomeArranger()
{
    ::close(mCommands);
    mPainter.reset();
    QDBusConnection::disconnectFromBus(kConnectionName);
}

QDBusMessage GnomeArranger::call(const QString& service, const QString& path,
                                 const QString& interface, const QString& member,
                                 const QVariantList& arguments)
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, member);
    message.setArguments(arguments);
    return mConnection.call(message);
}

farview::DisplayState GnomeArranger::state()
{
    const auto state = farview::displayStateIn(call(
        kDisplayConfig, kDisplayConfigPath, kDisplayConfig, QStringLiteral("GetCurrentState")));
    return state.value_or(farview::DisplayState{});
}

std::string GnomeArranger::layout()
{
    std::ostringstream text;
    for (const auto& part : state().layout) {
        text << part.x << "," << part.y << " x" << part.scale << (part.isPrimary ? " primary" : "");
        for (const auto& id : part.monitors)
            text << " " << id.connector.toStdString();
        text << "\n";
    }
    return text.str();
}

bool GnomeArranger::apply(const farview::DisplayLayout& layout)
{
    const auto before = state();
    const auto reply = call(kDisplayConfig, kDisplayConfigPath, kDisplayConfig,
                            QStringLiteral("ApplyMonitorsConfig"),
                            farview::layoutRequest(before.serial, before, layout));
    return reply.type() == QDBusMessage::ReplyMessage;
}

void GnomeArranger::movePointer(int x, int y)
{
    call(kRemoteDesktop, mPointer, kRemoteSession, QStringLiteral("NotifyPointerMotionRelative"),
         {double(x - mPointerX), double(y - mPointerY)});
    mPointerX = x;
    mPointerY = y;
}

void GnomeArranger::fill(int x, int y, int width, int height, std::uint32_t colour)
{
    std::ostringstream line;
    line << "fill " << x << " " << y << " " << width << " " << height << " " << colour << "\n";
    say(line.str());
}

void GnomeArranger::cover(const std::string& monitor, int width, int height, double scale,
                          std::uint32_t colour)
{
    std::ostringstream line;
    line << "cover " << monitor << " " << width << " " << height << " " << scale << " " << colour
         << "\n";
    say(line.str());
}

void GnomeArranger::setCursor(int side, std::uint32_t colour, int hotspot)
{
    std::ostringstream line;
    line << "cursor " << side << " " << colour << " " << hotspot << "\n";
    say(line.str());
}

std::vector<std::string> GnomeArranger::takeInput()
{
    std::ifstream file(mFolder.path("input"));
    file.seekg(mTaken);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line) && !file.eof(); mTaken = file.tellg())
        lines.push_back(line);
    return lines;
}

void GnomeArranger::say(const std::string& line)
{
    if (::write(mCommands, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw std::runtime_error("the painter does not listen");
}
