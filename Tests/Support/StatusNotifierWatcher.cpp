#include "Tests/Support/StatusNotifierWatcher.h"

#include "Tests/Support/WaitUntil.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>

#include <stdexcept>

namespace
{

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString menuPath = QStringLiteral("/MenuBar");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QString freshName()
{
    static int count = 0;
    return QStringLiteral("test-watcher-%1").arg(++count);
}

/// The fields of (ia{sv}av), without its children.
StatusNotifierWatcher::Entry readEntry(const QDBusArgument& argument)
{
    StatusNotifierWatcher::Entry entry;
    argument >> entry.id >> entry.properties;
    return entry;
}

QList<StatusNotifierWatcher::Entry> readChildren(const QDBusArgument& argument)
{
    QList<StatusNotifierWatcher::Entry> children;
    argument.beginStructure();
    readEntry(argument);
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        const auto fields = child.variant().value<QDBusArgument>();
        fields.beginStructure();
        children.append(readEntry(fields));
        // The entry's own children: menus below menus are not used here.
        fields.beginArray();
        fields.endArray();
        fields.endStructure();
    }
    argument.endArray();
    argument.endStructure();
    return children;
}

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher(const std::string& busAddress, bool hasHost)
    : mConnection(QDBusConnection::connectToBus(QString::fromStdString(busAddress), freshName())),
      mHasHost(hasHost)
{
    mConnection.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                               QDBusConnection::ExportScriptableSlots |
                                   QDBusConnection::ExportScriptableSignals |
                                   QDBusConnection::ExportAllProperties);
    mConnection.connect(QString(), menuPath, menuInterface, QStringLiteral("LayoutUpdated"), this,
                        SLOT(layoutUpdated()));
    mConnection.connect(QString(), itemPath, itemInterface, QStringLiteral("NewIcon"), this,
                        SLOT(newIcon()));
    mConnection.connect(QString(), itemPath, itemInterface, QStringLiteral("NewStatus"), this,
                        SLOT(newStatus(QString)));
    if (!mConnection.registerService(watcherName))
        throw std::runtime_error("another tray runs on this bus");
}

StatusNotifierWatcher::~StatusNotifierWatcher()
{
    QDBusConnection::disconnectFromBus(mConnection.name());
}

void StatusNotifierWatcher::RegisterStatusNotifierItem(const QString& service)
{
    mItems.append(service);
}

void StatusNotifierWatcher::addHost()
{
    mHasHost = true;
    Q_EMIT StatusNotifierHostRegistered();
}

void StatusNotifierWatcher::removeHost()
{
    mHasHost = false;
    Q_EMIT StatusNotifierHostUnregistered();
}

bool StatusNotifierWatcher::isAlive(const QString& item)
{
    return mConnection.interface()->isServiceRegistered(item);
}

QDBusMessage StatusNotifierWatcher::call(const QString& item, const QString& path,
                                         const QString& interface, const QString& member,
                                         const QVariantList& arguments)
{
    auto message = QDBusMessage::createMethodCall(item, path, interface, member);
    message.setArguments(arguments);
    auto pending = mConnection.asyncCall(message, 5000);
    waitUntil([&] { return pending.isFinished(); });
    return pending.reply();
}

QVariant StatusNotifierWatcher::property(const QString& item, const QString& name)
{
    const auto reply =
        call(item, itemPath, propertiesInterface, QStringLiteral("Get"), {itemInterface, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

QVariantMap StatusNotifierWatcher::properties(const QString& item)
{
    const auto reply =
        call(item, itemPath, propertiesInterface, QStringLiteral("GetAll"), {itemInterface});
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

QList<StatusNotifierWatcher::Entry> StatusNotifierWatcher::menu(const QString& item, int parent)
{
    const auto reply = call(item, menuPath, menuInterface, QStringLiteral("GetLayout"),
                            {parent, -1, QStringList()});
    if (reply.arguments().size() != 2)
        return {};
    return readChildren(reply.arguments().at(1).value<QDBusArgument>());
}

StatusNotifierWatcher::Entry StatusNotifierWatcher::entry(const QString& item, const QString& label)
{
    for (const auto& each : menu(item)) {
        if (each.label() == label)
            return each;
    }
    return {};
}

void StatusNotifierWatcher::click(const QString& item, int id)
{
    call(item, menuPath, menuInterface, QStringLiteral("Event"),
         {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(QString())), 0u});
}
