#include "Platform/Desktop/Bus/SessionBus.h"

#include <utility>

namespace farview
{
namespace
{

constexpr Duration longestPause{30.0};
constexpr int patience = 5000; // milliseconds

constexpr unsigned doNotQueue = 4;
constexpr unsigned nowPrimaryOwner = 1;
constexpr unsigned alreadyOwner = 4;

} // namespace

SessionBus::SessionBus(Log& log)
    : BusConnection(log, {"session", address, Owner::thisUser, longestPause, patience})
{
    connectNow();
}

void SessionBus::requestName(const std::string& name, QObject* asker,
                             std::function<void(bool isOurs)> then)
{
    const auto request = busCall(QStringLiteral("RequestName"))
                         << QString::fromStdString(name) << doNotQueue;
    ask(request, asker, [then = std::move(then)](const QDBusMessage& reply) {
        const unsigned result = reply.signature() == u"u" ? reply.arguments().at(0).toUInt() : 0;
        then(result == nowPrimaryOwner || result == alreadyOwner);
    });
}

void SessionBus::releaseName(const std::string& name)
{
    send(busCall(QStringLiteral("ReleaseName")) << QString::fromStdString(name));
}

QString SessionBus::address()
{
    const QString stated = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!stated.isEmpty())
        return stated;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QString() : QStringLiteral("unix:path=%1/bus").arg(folder);
}

} // namespace farview
