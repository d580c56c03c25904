#include "Applications/FarviewStatusItem/DBusMenu.h"

#include "Applications/FarviewStatusItem/StatusMenu.h"
#include "Controls/Qt/Text/PlainText.h"

#include <QGuiApplication>

namespace farview
{
namespace
{

constexpr int rootId = MenuLayout::rootId;

/// One line, in which an underscore is a letter, not the mark of a shortcut.
QString labelOf(const MenuItem& item) { return plainLine(item.title).replace(u'_', u"__"_qs); }

/// Of the entries of the menu itself one is marked, of those of a submenu any number.
QVariantMap describe(const MenuLayout::Row& row)
{
    const MenuItem& item = *row.item;
    if (isSeparator(item))
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    QVariantMap properties{{QStringLiteral("label"), labelOf(item)},
                           {QStringLiteral("enabled"), item.submenu || item.canBeChosen()}};
    if (item.state == 1) {
        properties.insert(QStringLiteral("toggle-type"),
                          row.parent == rootId ? u"radio"_qs : u"checkmark"_qs);
        properties.insert(QStringLiteral("toggle-state"), 1);
    }
    if (item.submenu)
        properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    return properties;
}

/// No names: all of them.
QVariantMap only(const QStringList& names, QVariantMap properties)
{
    for (auto each = properties.begin(); !names.isEmpty() && each != properties.end();)
        each = names.contains(each.key()) ? std::next(each) : properties.erase(each);
    return properties;
}

} // namespace

DBusMenu::DBusMenu(QObject* parent) : QObject(parent) { registerDBusMenuTypes(); }

void DBusMenu::setMenu(const Menu& menu)
{
    if (mLayout.setMenu(menu))
        Q_EMIT LayoutUpdated(mLayout.revision(), rootId);
}

QString DBusMenu::textDirection() const
{
    return QGuiApplication::isRightToLeft() ? QStringLiteral("rtl") : QStringLiteral("ltr");
}

bool DBusMenu::isKnown(int id) const { return id == rootId || mLayout.row(id); }

QVariantMap DBusMenu::propertiesOf(int id) const
{
    if (id == rootId)
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    const auto* row = mLayout.row(id);
    return row ? describe(*row) : QVariantMap();
}

/// The entries in that one's submenu, `depth` levels of them; all for a negative number.
QList<DBusMenuLayoutItem> DBusMenu::childrenOf(int parentId, int depth,
                                               const QStringList& propertyNames) const
{
    QList<DBusMenuLayoutItem> children;
    for (const auto& row : mLayout.rows()) {
        if (depth != 0 && row.parent == parentId)
            children.append({row.id, only(propertyNames, describe(row)),
                             childrenOf(row.id, depth - 1, propertyNames)});
    }
    return children;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayoutItem& layout)
{
    layout = {parentId, only(propertyNames, propertiesOf(parentId)),
              childrenOf(parentId, recursionDepth, propertyNames)};
    return mLayout.revision();
}

DBusMenuPropertiesList DBusMenu::GetGroupProperties(const DBusMenuIds& ids,
                                                    const QStringList& propertyNames)
{
    DBusMenuPropertiesList result;
    if (ids.isEmpty()) {
        for (const auto& row : mLayout.rows())
            result.append({row.id, only(propertyNames, describe(row))});
    }
    for (const int id : ids) {
        if (isKnown(id))
            result.append({id, only(propertyNames, propertiesOf(id))});
    }
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name)
{
    // A variant cannot be empty on the wire.
    return QDBusVariant(propertiesOf(id).value(name, QString()));
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint)
{
    if (eventId == QStringLiteral("clicked"))
        mLayout.choose(id);
}

DBusMenuIds DBusMenu::EventGroup(const DBusMenuEvents& events)
{
    DBusMenuIds unknown;
    for (const auto& event : events) {
        if (!isKnown(event.id))
            unknown.append(event.id);
        Event(event.id, event.event, event.data, event.timestamp);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int)
{
    // The menu is always up to date.
    return false;
}

DBusMenuIds DBusMenu::AboutToShowGroup(const DBusMenuIds& ids, DBusMenuIds& unknownIds)
{
    for (const int id : ids) {
        if (!isKnown(id))
            unknownIds.append(id);
    }
    return {};
}

} // namespace farview
