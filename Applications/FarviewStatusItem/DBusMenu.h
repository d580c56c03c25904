#pragma once

#include "Applications/FarviewStatusItem/DBusMenuTypes.h"
#include "Applications/FarviewStatusItem/MenuLayout.h"

#include <QObject>

namespace farview
{

/// The item's menu as trays read it over the bus. Main thread only.
class DBusMenu : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    explicit DBusMenu(QObject* parent);

    /// Announces the change when there is one to see.
    void setMenu(const Menu& menu);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    Q_SCRIPTABLE uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                farview::DBusMenuLayoutItem& layout);
    Q_SCRIPTABLE farview::DBusMenuPropertiesList
    GetGroupProperties(const farview::DBusMenuIds& ids, const QStringList& propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name);
    Q_SCRIPTABLE void Event(int id, const QString& eventId, const QDBusVariant& data,
                            uint timestamp);
    /// Returns the numbers that no entry has.
    Q_SCRIPTABLE farview::DBusMenuIds EventGroup(const farview::DBusMenuEvents& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE farview::DBusMenuIds AboutToShowGroup(const farview::DBusMenuIds& ids,
                                                       farview::DBusMenuIds& unknownIds);

Q_SIGNALS:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);

private:
    QVariantMap propertiesOf(int id) const;
    QList<DBusMenuLayoutItem> childrenOf(int parentId, int depth,
                                         const QStringList& propertyNames) const;
    bool isKnown(int id) const;

    MenuLayout mLayout;
};

} // namespace farview
