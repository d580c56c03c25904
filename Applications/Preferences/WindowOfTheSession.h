#pragma once

#include "Applications/Preferences/HostStatus.h"

#include "Platform/Desktop/Bus/SessionBus.h"

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

    explicit WindowOfTheSession(farview::Log& log);

    /// Tells on a later turn whether this process is the one with the window. Then later starts
    /// call `handler`.
    void becomeFirst(Handler handler, std::function<void(bool isFirst)> then);
    /// The host's connection to the session bus; an unconnected one where there is no bus.
    QDBusConnection bus() const { return mBus.connection(); }
    /// Hands the wish to the first start; `then` hears what it says, within some seconds.
    void handOver(const Wish& wish, std::function<void(const HostError&)> then);

public slots:
    /// Called over the bus. Gives a status, and a message in `message`.
    Q_SCRIPTABLE int Show(const QString& pane, const QString& activationToken, QString& message);

private:
    QString serviceName() const;

    farview::SessionBus mBus;
    Handler mHandler;
};
