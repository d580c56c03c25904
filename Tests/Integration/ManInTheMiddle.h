#pragma once

#include "Tests/Support/WaitUntil.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>

namespace farview
{

/// Somebody between a computer and a device: the computer finds him at the usual port, and he
/// connects on to the device. He keeps what he reads of the last connection, and passes it on as he
/// likes.
class ManInTheMiddle
{
public:
    enum Way { toDevice, toHost };
    using Change = std::function<QByteArray(Way, const QByteArray&)>;

    explicit ManInTheMiddle(std::uint16_t devicePort) : mDevicePort(devicePort)
    {
        QObject::connect(&mListener, &QTcpServer::newConnection, &mListener, [this] { begin(); });
        mListener.listen(QHostAddress::LocalHost, 6001);
    }

    /// What passes while nothing is changed: everything.
    static QByteArray unchanged(Way /*way*/, const QByteArray& bytes) { return bytes; }
    /// In one direction the piece of that number becomes what `replace` makes of it.
    static Change once(Way where, int number, std::function<QByteArray(const QByteArray&)> replace)
    {
        return [=, next = 0](Way way, const QByteArray& bytes) mutable {
            return way == where && next++ == number ? replace(bytes) : bytes;
        };
    }
    /// The pieces in which it came.
    const QByteArrayList& pieces(Way way) const { return mPieces[way]; }
    QByteArray seen(Way way) const { return mPieces[way].join(); }
    void cut()
    {
        for (auto& end : mEnds)
            end.reset();
    }

    Change change = unchanged;

private:
    void begin()
    {
        mPieces = {};
        mEnds[toHost].reset(mListener.nextPendingConnection());
        mEnds[toHost]->setParent(nullptr);
        mEnds[toDevice] = std::make_unique<QTcpSocket>();
        mEnds[toDevice]->connectToHost(QHostAddress(QHostAddress::LocalHost), mDevicePort);
        pass(toDevice);
        pass(toHost);
    }
    void pass(Way way)
    {
        QTcpSocket* const to = mEnds[way].get();
        QTcpSocket* const from = mEnds[way == toHost ? toDevice : toHost].get();
        QObject::connect(from, &QTcpSocket::readyRead, to, [=, this] {
            mPieces[way].append(from->readAll());
            to->write(change(way, mPieces[way].last()));
        });
        QObject::connect(from, &QTcpSocket::disconnected, to, [=] { to->disconnectFromHost(); });
    }

    std::uint16_t mDevicePort;
    QTcpServer mListener;
    std::array<QByteArrayList, 2> mPieces;
    std::array<std::unique_ptr<QTcpSocket>, 2> mEnds; ///< to the device, to the host
};

} // namespace farview
