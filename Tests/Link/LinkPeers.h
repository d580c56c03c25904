#pragma once

#include "Link/Encryption.h"
#include "Link/LinkConnection.h"
#include "Link/LinkListener.h"
#include "Tests/Support/WaitUntil.h"

#include <QHostAddress>
#include <gtest/gtest.h>

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
    return {milliseconds(400), milliseconds(500), milliseconds(50), milliseconds(300),
            milliseconds(200)};
}

/// The keys of a test's host and device; made once, because that takes its time.
inline const OwnKey& keyOfHost()
{
    static const OwnKey key = makeOwnKey();
    return key;
}
inline const OwnKey& keyOfDevice()
{
    static const OwnKey key = makeOwnKey();
    return key;
}
inline const OwnKey& keyOf(LinkSide side)
{
    return side == LinkSide::host ? keyOfHost() : keyOfDevice();
}

/// Remembers what a connection reported, and does what the test wants at that moment.
struct LinkRecorder final : LinkConnectionDelegate {
    bool greeted = false;
    bool opened = false;
    /// What it says of the peer's key.
    LinkTrust trust = true;
    bool proved = false;
    /// Why its user may not be asked.
    std::optional<LinkGoodbye> mayNotAsk;
    std::string digits;
    std::vector<LinkFrame> frames;
    std::vector<LinkEnd> ends;
    int timesOfRoom = 0;
    std::function<void(LinkConnection&)> onGreet = [](LinkConnection& link) { link.accept(); };
    std::function<void()> onProve = [] {};
    std::function<void()> onMayAsk = [] {};
    std::function<void(LinkConnection&)> onAsk = [](LinkConnection&) {};
    std::function<void()> onOpen = [] {};
    std::function<void()> onReceive = [] {};
    std::function<void()> onEnd = [] {};

    void linkDidGreet(LinkConnection& connection) override
    {
        greeted = true;
        onGreet(connection);
    }
    LinkTrust linkDidProveKey(LinkConnection&) override
    {
        proved = true;
        onProve();
        return trust;
    }
    std::optional<LinkGoodbye> linkMayNotAskUser(LinkConnection&) override
    {
        onMayAsk();
        return mayNotAsk;
    }
    void linkAsksUser(LinkConnection& connection) override
    {
        digits = connection.digits();
        onAsk(connection);
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
    std::unique_ptr<QSslSocket> host = std::make_unique<QSslSocket>();
    std::unique_ptr<QSslSocket> device;

    SocketPair()
    {
        LinkListener server;
        server.listen(QHostAddress::LocalHost, 0);
        host->connectToHost(QHostAddress(QHostAddress::LocalHost), server.serverPort());
        waitUntil([&] {
            return host->state() == QAbstractSocket::ConnectedState &&
                   server.hasPendingConnections();
        });
        device = server.next();
    }
};

/// A socket that has come through to that port on this computer, and said nothing yet.
inline std::unique_ptr<QSslSocket> connectedSocket(std::uint16_t port)
{
    auto socket = std::make_unique<QSslSocket>();
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    EXPECT_TRUE(waitUntil([&] { return socket->state() == QAbstractSocket::ConnectedState; }));
    return socket;
}

inline void writeBytes(QSslSocket& socket, const Bytes& bytes)
{
    socket.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    socket.flush();
}

/// Everything that has come, at least `size` bytes of it.
inline Bytes readBytes(QSslSocket& socket, std::size_t size)
{
    EXPECT_TRUE(waitUntil([&] { return socket.bytesAvailable() >= static_cast<qint64>(size); }));
    const QByteArray bytes = socket.readAll();
    return {bytes.begin(), bytes.end()};
}

/// Encrypts a scripted end of a connection once greeting and answer are exchanged, as a peer of
/// that side does.
inline bool secure(QSslSocket& socket, LinkSide side, const Bytes& agreement, const OwnKey& key)
{
    socket.setSslConfiguration(encryptionSettings(key, agreement));
    if (side == LinkSide::host)
        socket.startClientEncryption();
    else
        socket.startServerEncryption();
    return waitUntil([&] { return socket.isEncrypted(); });
}

/// A scripted peer that does all that comes before the first frame, and says that it knows the
/// other side.
inline bool introduce(QSslSocket& socket, LinkSide side, const LinkAgreement& agreement)
{
    LinkGreeting speaks{agreement.version, agreement.version, {}};
    for (const auto& feature : agreement.features)
        speaks.features.push_back({feature, feature == kLinkEncryptionFeature});
    Bytes agreed;
    if (side == LinkSide::device) {
        agreed = readBytes(socket, 1);
        const Bytes answer = encodeAnswer(agreement);
        writeBytes(socket, answer);
        agreed.insert(agreed.end(), answer.begin(), answer.end());
    } else {
        agreed = encodeGreeting(speaks);
        writeBytes(socket, agreed);
        const Bytes answer = readBytes(socket, 1);
        agreed.insert(agreed.end(), answer.begin(), answer.end());
    }
    if (!secure(socket, side, agreed, keyOf(side)))
        return false;
    writeBytes(socket, encodeFrame(LinkStanding{true}));
    const std::size_t standing = encodeFrame(LinkStanding{}).size();
    if (!waitUntil([&] { return socket.bytesAvailable() >= static_cast<qint64>(standing); }))
        return false;
    socket.read(static_cast<qint64>(standing));
    return true;
}

} // namespace farview
