#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

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
};
using DBusMenuPropertiesList = QList<DBusMenuProperties>;

struct DBusMenuEvent { // (isvu)
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};
using DBusMenuEvents = QList<DBusMenuEvent>;
using DBusMenuIds = QList<int>;

struct DBusIcon { // (iiay), ARGB in network byte order
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using DBusIcons = QList<DBusIcon>;

struct DBusToolTip { // (sa(iiay)ss)
    QString icon;
    DBusIcons icons;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusIcon& icon);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusIcon& icon);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusToolTip& toolTip);

/// Makes the types known to the bus library. Before the first use; idempotent.
void registerDBusMenuTypes();

} // namespace farview

Q_DECLARE_METATYPE(farview::DBusMenuLayoutItem)
Q_DECLARE_METATYPE(farview::DBusMenuProperties)
Q_DECLARE_METATYPE(farview::DBusMenuEvent)
Q_DECLARE_METATYPE(farview::DBusIcon)
Q_DECLARE_METATYPE(farview::DBusToolTip)
