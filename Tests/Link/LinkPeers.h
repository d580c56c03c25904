#pragma once

#include "Link/LinkConnection.h"
#include "Tests/Support/WaitUntil.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace farview
{

/// Short times, so that a test of a time-out takes a fraction of a second.
inline LinkTimes quickTimes()
{
    using std::chrono::milliseconds;
    return {milliseconds(400), milliseconds(50), milliseconds(300), milliseconds(200)};
}

/// Remembers what a connection reported, and does what the test wants at that moment.
struct LinkRecorder final : LinkConnectionDelegate {
    bool greeted = false;
    bool opened = false;
    std::vector<LinkFrame> frames;
    std::vector<LinkEnd> ends;
    int timesOfRoom = 0;
    std::function<void(LinkConnection&)> onGreet = [](LinkConnection& link) { link.accept(); };
    std::function<void()> onOpen = [] {};
    std::function<void()> onReceive = [] {};
    std::function<void()> onEnd = [] {};

    void linkDidGreet(LinkConnection& connection) override
    {
        greeted = true;
        onGreet(connection);
    }
    void linkDidOpen(LinkConnection&) override
    {
        opened = true;
        onOpen();
    }
    void linkDidReceive(LinkConnection&, const LinkFrame& frame) override
    {
        frames.push_back(frame);
        onReceive();
    }
    void linkHasRoom(LinkConnection&) override { ++timesOfRoom; }
    void linkDidEnd(LinkConnection&, const LinkEnd& end) override
    {
        ends.push_back(end);
        onEnd();
    }

    bool ended() const { return !ends.empty(); }
    /// How it ended; nothing while it has not.
    std::optional<LinkEndReason> reason() const
    {
        return ends.empty() ? std::nullopt : std::optional(ends.front().reason);
    }
};

/// Two connected sockets on the loopback interface: the host's and the device's.
struct SocketPair {
    std::unique_ptr<QTcpSocket> host;
    std::unique_ptr<QTcpSocket> device;

    explicit SocketPair(std::unique_ptr<QTcpSocket> unconnected = std::make_unique<QTcpSocket>())
        : host(std::move(unconnected))
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost, 0);
        host->connectToHost(QHostAddress(QHostAddress::LocalHost), server.serverPort());
        waitUntil([&] {
            return host->state() == QAbstractSocket::ConnectedState &&
                   server.hasPendingConnections();
        });
        device.reset(server.nextPendingConnection());
        device->setParent(nullptr);
    }
};

inline void writeBytes(QTcpSocket& socket, const Bytes& bytes)
{
    socket.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    socket.flush();
}

} // namespace farview
