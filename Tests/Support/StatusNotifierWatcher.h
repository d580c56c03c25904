#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <string>

/// A tray of the StatusNotifierItem kind, on a connection of its own: keeps the list of items, and
/// asks them as a tray does. Ends with the object.
class StatusNotifierWatcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion CONSTANT)

public:
    /// One entry of an item's menu.
    struct Entry {
        int id = 0;
        QVariantMap properties;

        QString label() const { return properties.value(QStringLiteral("label")).toString(); }
        bool enabled() const { return properties.value(QStringLiteral("enabled"), true).toBool(); }
        bool isMarked() const
        {
            return properties.value(QStringLiteral("toggle-state")).toInt() == 1;
        }
        bool isSeparator() const
        {
            return properties.value(QStringLiteral("type")) == QStringLiteral("separator");
        }
    };

    explicit StatusNotifierWatcher(const std::string& busAddress, bool hasHost = true);
    ~StatusNotifierWatcher() override;

    /// Those that registered here, in order, dead ones included.
    const QStringList& items() const { return mItems; }
    bool isAlive(const QString& item);

    QVariant property(const QString& item, const QString& name);
    QVariantMap properties(const QString& item);
    /// Empty when the item does not answer.
    QList<Entry> menu(const QString& item, int parent = 0);
    /// The entry of that label; its `id` is 0 when there is none.
    Entry entry(const QString& item, const QString& label);
    void click(const QString& item, int id);
    /// A call to the item or its menu, with the answer.
    QDBusMessage call(const QString& item, const QString& path, const QString& interface,
                      const QString& member, const QVariantList& arguments);

    int layoutUpdates() const { return mLayoutUpdates; }
    int newIcons() const { return mNewIcons; }
    const QStringList& newStatuses() const { return mNewStatuses; }

    bool hasHost() const { return mHasHost; }
    void addHost();
    void removeHost();
    int protocolVersion() const { return 0; }

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);

Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

private Q_SLOTS:
    void layoutUpdated() { ++mLayoutUpdates; }
    void newIcon() { ++mNewIcons; }
    void newStatus(const QString& status) { mNewStatuses.append(status); }

private:
    QDBusConnection mConnection;
    QStringList mItems;
    bool mHasHost;
    int mLayoutUpdates = 0;
    int mNewIcons = 0;
    QStringList mNewStatuses;
};
