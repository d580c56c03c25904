#include "Applications/FarviewStatusItem/DBusMenuTypes.h"

#include <QDBusMetaType>

namespace farview
{

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const auto& child : item.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        item.children.append(qdbus_cast<DBusMenuLayoutItem>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

void registerDBusMenuTypes()
{
    qDBusRegisterMetaType<DBusMenuLayoutItem>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<DBusMenuPropertiesList>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<DBusMenuEvents>();
    qDBusRegisterMetaType<DBusMenuIds>();
    qDBusRegisterMetaType<DBusIcon>();
    qDBusRegisterMetaType<DBusIcons>();
    qDBusRegisterMetaType<DBusToolTip>();
    // Arguments are found by the names that the slots spell.
    qRegisterMetaType<DBusMenuPropertiesList>("farview::DBusMenuPropertiesList");
    qRegisterMetaType<DBusMenuEvents>("farview::DBusMenuEvents");
    qRegisterMetaType<DBusMenuIds>("farview::DBusMenuIds");
    qRegisterMetaType<DBusIcons>("farview::DBusIcons");
}

} // namespace farview
