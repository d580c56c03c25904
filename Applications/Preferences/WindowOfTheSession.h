#pragma once

#include "Applications/Preferences/HostStatus.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

/// One window per login session: the first start owns a name on the session bus, later ones hand
/// their wish to it. Where there is no bus every start is the first.
class WindowOfTheSession : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quillon.FarviewPreferences")

public:
    /// What a start wants: a bundle to show (empty: whatever is on show) and the token by which
    /// the desktop lets its window come to the front.
    struct Wish {
        QString pane;
        QString activationToken;
    };
    using Handler = std::function<HostError(const Wish&)>;

    WindowOfTheSession();
    ~WindowOfTheSession() override;

    /// Whether this process is the one with the window. Then later starts call `handler`.
    bool becomeFirst(Handler handler);
    /// The host's connection to the session bus; an unconnected one where there is no bus.
    const QDBusConnection& bus() const { return mBus; }
    /// Hands the wish to the first start and waits, some seconds at most, for what it says.
    HostError handOver(const Wish& wish);

public slots:
    /// Called over the bus. Gives a status, and a message in `message`.
    Q_SCRIPTABLE int Show(const QString& pane, const QString& activationToken, QString& message);

private:
    QString serviceName() const;

    QDBusConnection mBus;
    Handler mHandler;
};
