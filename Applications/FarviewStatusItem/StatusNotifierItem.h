#pragma once

#include "Applications/FarviewStatusItem/DBusMenu.h"
#include "Applications/FarviewStatusItem/StatusMenu.h"
#include "Platform/Desktop/Bus/SessionBus.h"

#include <QDBusObjectPath>
#include <QObject>

#include <functional>

namespace farview
{

/// The status item as trays of the StatusNotifierItem kind read it over the bus. Offers itself on
/// each connection to the bus; `registerWithWatcher` shows it. Main thread only.
class StatusNotifierItem : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(farview::DBusIcons IconPixmap READ icons)
    Q_PROPERTY(QString OverlayIconName READ none CONSTANT)
    Q_PROPERTY(farview::DBusIcons OverlayIconPixmap READ noIcons CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ iconName)
    Q_PROPERTY(farview::DBusIcons AttentionIconPixmap READ icons)
    Q_PROPERTY(QString AttentionMovieName READ none CONSTANT)
    Q_PROPERTY(QString IconThemePath READ themePath CONSTANT)
    Q_PROPERTY(farview::DBusToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

public:
    /// `bus` must outlive this. `activated`: the user pressed the item itself.
    StatusNotifierItem(SessionBus& bus, std::function<void()> activated);
    /// Takes the item out of the tray.
    ~StatusNotifierItem() override;

    void show(const StatusItemDisplay& display);
    /// Tells the watcher, which has just come, of the item.
    void registerWithWatcher();

    QString category() const { return QStringLiteral("Hardware"); }
    QString id() const { return QStringLiteral("farview"); }
    QString title() const { return QStringLiteral("Farview"); }
    /// "NeedsAttention" while the user is asked something, else "Active".
    QString status() const { return mStatus; }
    int windowId() const { return 0; }
    QString iconName() const { return mIconName; }
    /// For trays that do not find the icon by its name.
    DBusIcons icons() const { return mIcons; }
    QString themePath() const;
    DBusToolTip toolTip() const { return mToolTip; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const;
    QString none() const { return {}; }
    DBusIcons noIcons() const { return {}; }

public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString& orientation);

Q_SIGNALS:
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewStatus(const QString& status);
    Q_SCRIPTABLE void NewToolTip();

private:
    void offer();

    SessionBus& mBus;
    std::function<void()> mActivated;
    DBusMenu* mMenu;
    QString mStatus = QStringLiteral("Active");
    QString mIconName;
    DBusIcons mIcons;
    DBusToolTip mToolTip;
};

} // namespace farview
