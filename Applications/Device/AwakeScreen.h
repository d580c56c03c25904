#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"

#include <QObject>
#include <QString>

#include <optional>

namespace farview
{

/// Keeps the desktop from blanking the screen and from sleeping, where it offers that to programs.
/// The desktop forgets it by itself when the program ends. Main thread only.
class AwakeScreen final : public QObject
{
public:
    /// `reason` is what the desktop tells its user. The bus outlives this.
    AwakeScreen(SessionBus& bus, QString reason);

    /// Takes effect on a later turn, and again on each bus that replaces this one.
    void keep(bool isWanted);

private:
    void ask();
    void takeCookie(const QDBusMessage& reply);
    void release();

    SessionBus& mBus;
    QString mReason;
    bool mIsWanted = false;
    bool mIsAsking = false;
    std::optional<uint> mCookie; ///< by which the desktop knows what we asked for
};

} // namespace farview
