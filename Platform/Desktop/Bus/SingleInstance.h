#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"

#include <QDBusMessage>
#include <QObject>
#include <QTimer>

#include <functional>
#include <string>

namespace farview
{

/// The bus name by which a running application is known: its bundle identifier. Characters that a
/// bus name cannot hold become '_', and a lone word is put below "com.quillon.".
std::string applicationBusName(const std::string& bundleIdentifier);

/// Makes a program the only one of its kind on the user's bus. Two names serve for it:
///
/// The application's name is owned by the instance that runs and stays. It is dropped as soon as
/// the program is asked to quit, so that the next one can be started at once. The name with
/// ".Turn" appended is owned until the process ends; the next instance waits for it before it
/// touches what only one can use.
///
/// Without a bus every instance is the only one. Main thread only.
class SingleInstance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quillon.Application")

public:
    /// `bus` must outlive this.
    SingleInstance(SessionBus& bus, const std::string& bundleIdentifier);
    /// Gives up both names.
    ~SingleInstance() override;

    /// Tells on a later turn whether this is the instance now. False: another one runs and stays;
    /// end quietly. Not told after `release`.
    void acquire(std::function<void(bool isTheOne)> then);
    /// Calls `action` once, on a later turn, when every earlier instance has ended; after five
    /// seconds at the latest, because one that hangs must not stop the next.
    void whenItsTurnComes(std::function<void()> action);
    /// Gives up the application's name, for good: to be called first when asked to quit.
    void release();

    /// Where `isStaying` can be called on the application's name.
    static constexpr const char* objectPath = "/com/quillon/Application";
    static constexpr const char* interfaceName = "com.quillon.Application";

public Q_SLOTS:
    /// For other processes: whether the program stays, or has been asked to quit. The answer comes
    /// after everything that the caller posted before the call has been handled.
    Q_SCRIPTABLE bool isStaying(const QDBusMessage& call);

Q_SIGNALS:
    /// The bus came back after a loss, and another instance has taken the name meanwhile.
    void replaced();

private Q_SLOTS:
    void beginTurn();

private:
    void joinBus();
    void rejoinBus(bool again);
    void queueForTurn();
    void takeName(std::function<void(bool isTheOne)> then);

    SessionBus& mBus;
    std::string mName;
    std::string mTurnName;
    std::function<void()> mAction;
    QTimer mLimit;
    bool mIsWanted = false; ///< the name, or soon
    bool mWaitsForTurn = false;
};

} // namespace farview
