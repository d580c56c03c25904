// Whatever a stranger sends to a connection's socket: greeting or answer, then the handshake.

#include "Link/Encryption.h"
#include "Link/LinkConnection.h"
#include "Link/LinkListener.h"
#include "Tests/Fuzz/Expect.h"

#include <QCoreApplication>
#include <QHostAddress>

using namespace farview;

namespace
{

/// Nobody who only sends bytes proves a key.
struct Watch final : LinkConnectionDelegate {
    bool ended = false;

    void linkDidGreet(LinkConnection& connection) override { connection.accept(); }
    LinkTrust linkDidProveKey(LinkConnection&) override
    {
        expect(false, "a key is not proved by bytes that somebody made up");
        return true;
    }
    void linkDidOpen(LinkConnection&) override { expect(false, "the connection stays closed"); }
    void linkDidReceive(LinkConnection&, const LinkFrame&) override
    {
        expect(false, "no frame is believed");
    }
    void linkDidEnd(LinkConnection&, const LinkEnd&) override { ended = true; }
};

template <typename Condition> void turnUntil(Condition condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Ours, and the stranger's end.
struct Sockets {
    LinkListener listener;
    QTcpSocket stranger;
    std::unique_ptr<QSslSocket> ours;

    Sockets()
    {
        listener.listen(QHostAddress::LocalHost, 0);
        stranger.connectToHost(listener.serverAddress(), listener.serverPort());
        turnUntil([&] { return stranger.state() == QAbstractSocket::ConnectedState; });
        turnUntil([&] { return listener.hasPendingConnections(); });
        ours = listener.next();
    }
};

Bytes beginning(LinkSide ours)
{
    const auto answer = agreementBetween(ownGreeting(), ownGreeting());
    return ours == LinkSide::device ? encodeGreeting(ownGreeting()) : encodeAnswer(answer);
}

void write(QTcpSocket& socket, ByteView bytes)
{
    socket.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
}

void talk(LinkSide side, bool beginsWell, ByteView bytes)
{
    using std::chrono::milliseconds;
    static const OwnKey key = makeOwnKey();
    const LinkTimes times{milliseconds(2000), milliseconds(2000), milliseconds(1000),
                          milliseconds(2000), milliseconds(500)};
    Sockets sockets;
    const auto watch = std::make_shared<Watch>();
    const auto link =
        LinkConnection::make(side, std::move(sockets.ours), watch, key, ownGreeting(), times);
    if (beginsWell) {
        write(sockets.stranger, beginning(side));
        // The handshake begins with what comes after the other's words.
        turnUntil([&] { return sockets.stranger.bytesAvailable() > 0; });
    }
    write(sockets.stranger, bytes);
    sockets.stranger.disconnectFromHost();
    turnUntil([&] { return watch->ended; });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    if (size == 0)
        return 0;
    talk((bytes[0] & 1U) != 0 ? LinkSide::host : LinkSide::device, (bytes[0] & 2U) != 0,
         {bytes + 1, size - 1});
    return 0;
}
