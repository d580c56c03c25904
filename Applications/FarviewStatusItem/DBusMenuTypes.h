#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

#include <tuple>

// What travels in the menu's interface ("com.canonical.dbusmenu") and in the item's. Field by field
// as the wire has them.

namespace farview
{

struct DBusMenuLayoutItem { // (ia{sv}av)
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

struct DBusMenuProperties { // (ia{sv})
    int id = 0;
    QVariantMap properties;

    auto fields() { return std::tie(id, properties); }
};
using DBusMenuPropertiesList = QList<DBusMenuProperties>;

struct DBusMenuEvent { // (isvu)
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;

    auto fields() { return std::tie(id, event, data, timestamp); }
};
using DBusMenuEvents = QList<DBusMenuEvent>;
using DBusMenuIds = QList<int>;

struct DBusIcon { // (iiay), ARGB in network byte order
    int width = 0;
    int height = 0;
    QByteArray bytes;

    auto fields() { return std::tie(width, height, bytes); }
};
using DBusIcons = QList<DBusIcon>;

struct DBusToolTip { // (sa(iiay)ss)
    QString icon;
    DBusIcons icons;
    QString title;
    QString text;

    auto fields() { return std::tie(icon, icons, title, text); }
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item);
/// A record goes over the wire as a structure of its fields.
template <typename Record>
concept DBusRecord = requires(Record record)
{
    record.fields();
};

template <DBusRecord Record> QDBusArgument& operator<<(QDBusArgument& argument, Record record)
{
    argument.beginStructure();
    std::apply([&](const auto&... each) { (argument << ... << each); }, record.fields());
    argument.endStructure();
    return argument;
}

template <DBusRecord Record>
const QDBusArgument& operator>>(const QDBusArgument& argument, Record& record)
{
    argument.beginStructure();
    std::apply([&](auto&... each) { (argument >> ... >> each); }, record.fields());
    argument.endStructure();
    return argument;
}

/// Makes the types known to the bus library. Before the first use; idempotent.
void registerDBusMenuTypes();

} // namespace farview

Q_DECLARE_METATYPE(farview::DBusMenuLayoutItem)
Q_DECLARE_METATYPE(farview::DBusMenuProperties)
Q_DECLARE_METATYPE(farview::DBusMenuEvent)
Q_DECLARE_METATYPE(farview::DBusIcon)
Q_DECLARE_METATYPE(farview::DBusToolTip)
