#include "Tests/Discovery/TestPublisher.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QUuid>

#include <algorithm>

namespace
{

QVariant bytesOf(const std::vector<std::string>& record)
{
    QDBusArgument entries;
    entries.beginArray(QMetaType::fromType<QByteArray>());
    for (const auto& entry : record)
        entries << QByteArray::fromStdString(entry);
    entries.endArray();
    return QVariant::fromValue(entries);
}

const QString type = QStringLiteral("_qlexvscreen._udp");
constexpr int any = -1;

} // namespace

TestPublisher::TestPublisher(const std::string& busAddress)
    : mConnectionName(QUuid::createUuid().toString()),
      mConnection(
          QDBusConnection::connectToBus(QString::fromStdString(busAddress), mConnectionName))
{
}

TestPublisher::~TestPublisher() { QDBusConnection::disconnectFromBus(mConnectionName); }

QDBusMessage TestPublisher::call(const QString& path, const QString& member,
                                 const QVariantList& arguments)
{
    const auto interface = path == QLatin1String("/")
                               ? QStringLiteral("org.freedesktop.Avahi.Server")
                               : QStringLiteral("org.freedesktop.Avahi.EntryGroup");
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Avahi"), path,
                                                  interface, member);
    message.setArguments(arguments);
    const auto reply = mConnection.call(message);
    if (reply.type() != QDBusMessage::ReplyMessage)
        mLastError = reply.errorName().toStdString();
    return reply;
}

bool TestPublisher::publish(const Service& service)
{
    mLastError.clear();
    const auto made = call(QStringLiteral("/"), QStringLiteral("EntryGroupNew"), {});
    if (!mLastError.empty())
        return false;
    const auto path = made.arguments().at(0).value<QDBusObjectPath>().path();
    call(path, QStringLiteral("AddService"),
         {any, any, 0u, QString::fromStdString(service.name), type, QString(),
          QString::fromStdString(service.host), QVariant::fromValue(service.port),
          bytesOf(service.record)});
    if (mLastError.empty())
        call(path, QStringLiteral("Commit"), {});
    mGroups.push_back({service.name, path});
    return mLastError.empty();
}

void TestPublisher::update(const std::string& name, const std::vector<std::string>& record)
{
    for (const auto& group : mGroups) {
        if (group.name == name)
            call(group.path, QStringLiteral("UpdateServiceTxt"),
                 {any, any, 0u, QString::fromStdString(name), type, QString(), bytesOf(record)});
    }
}

void TestPublisher::withdraw(const std::string& name)
{
    for (const auto& group : mGroups) {
        if (group.name == name)
            call(group.path, QStringLiteral("Free"), {});
    }
    std::erase_if(mGroups, [&](const Group& group) { return group.name == name; });
}
