#include "Tests/Support/PrivateGnome.h"

#include "Tests/Support/WaitUntil.h"

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>

#include <filesystem>
#include <sstream>
#include <stdexcept>

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

GnomeArranger::~GnomeArranger() { QDBusConnection::disconnectFromBus(kConnectionName); }

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
