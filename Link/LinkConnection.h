#pragma once

#include "Link/LinkEnd.h"
#include "Link/Wire/LinkCodec.h"

#include <QByteArray>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// How long a connection waits for what. Changed by tests only.
struct LinkTimes {
    std::chrono::milliseconds greeting{5000};
    std::chrono::milliseconds keepAlive{1000};
    std::chrono::milliseconds silence{4000};
    std::chrono::milliseconds farewell{800};
};

/// There is room for a picture while less than this waits to be sent: the network takes it within
/// some milliseconds.
inline constexpr std::size_t kLinkRoom = std::size_t{64} << 10;
/// A connection on which more waits than this ends: the peer does not read. It is twice the largest
/// picture, so whoever asks for room never comes there.
inline constexpr std::size_t kLinkUnsentLimit = 2 * kLinkScreenDataLimit;

class LinkConnection;

/// Hears of one connection. Called on the connection's thread from its event loop, never inside a
/// call to the connection. The connection may be closed or dropped from inside any of these.
class LinkConnectionDelegate
{
public:
    virtual ~LinkConnectionDelegate() = default;
    /// Device side only: a host greeted and both could speak. `accept` or `refuse` it.
    virtual void linkDidGreet(LinkConnection&) {}
    /// Device side only: a host asks, without wanting to connect, whether it would be served. The
    /// refusal that it would meet now; nothing when it would be served.
    virtual std::optional<LinkRefusal> linkWouldRefuse(LinkConnection&) { return std::nullopt; }
    /// Both sides agreed. Frames may be sent from now on.
    virtual void linkDidOpen(LinkConnection& connection) = 0;
    /// Options or a screen rectangle; signs of life and goodbyes are kept by the connection.
    virtual void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) = 0;
    /// There is room for the next picture again, after `hasRoom` was false.
    virtual void linkHasRoom(LinkConnection&) {}
    /// The last call, exactly once, unless the connection was dropped before.
    virtual void linkDidEnd(LinkConnection& connection, const LinkEnd& end) = 0;
};

enum class LinkSide { host, device };

/// One connection between a host and a device, seen from either side, from the moment the socket is
/// connected: greeting, agreement, frames, signs of life, goodbye. Main thread only.
class LinkConnection : public std::enable_shared_from_this<LinkConnection>
{
public:
    /// Begins at once. The socket is connected already. Nothing is reported before the next turn.
    static std::shared_ptr<LinkConnection> make(LinkSide side, std::unique_ptr<QTcpSocket> socket,
                                                std::weak_ptr<LinkConnectionDelegate> delegate,
                                                const LinkGreeting& speaks, LinkTimes times);
    /// Breaks the connection off, without a word.
    ~LinkConnection();
    LinkConnection(const LinkConnection&) = delete;
    LinkConnection& operator=(const LinkConnection&) = delete;

    /// Device side, after `linkDidGreet`; ignored at any other time.
    void accept();
    /// Device side, before `accept`; ignored at any other time.
    void refuse(const LinkRefusal& refusal);
    /// Sends a frame while the connection is open; ignored otherwise, and without the feature that
    /// the frame needs. Returns at once. Takes the frame over: the data of a picture are read where
    /// they lie until the network has them. Everything arrives in the order of these calls, so a
    /// picture is sent only while there is room, and in packets that take a fraction of a second:
    /// the next goodbye waits until it has gone.
    void send(LinkFrame frame);
    /// How many bytes wait here because the network did not take them yet.
    std::size_t unsent() const { return static_cast<std::size_t>(mSocket->bytesToWrite()); }
    /// Whether the next picture may be sent. `linkHasRoom` tells when it may again.
    bool hasRoom() const { return unsent() < kLinkRoom; }
    /// Says goodbye and ends; `linkDidEnd` follows within the farewell time. A second call is
    /// ignored.
    void close(const LinkGoodbye& goodbye);

    bool isOpen() const { return mState == State::open; }
    /// Whether it ever was.
    bool wasOpened() const { return mWasOpened; }
    const LinkAgreement& agreement() const { return mAgreement; }
    /// The peer's numeric address, without a zone.
    const std::string& peerAddress() const { return mPeerAddress; }

private:
    enum class State { greeting, deciding, accepting, open, leaving, ended };

    LinkConnection(LinkSide side, std::unique_ptr<QTcpSocket> socket,
                   std::weak_ptr<LinkConnectionDelegate> delegate, const LinkGreeting& speaks,
                   LinkTimes times);
    void begin();
    void readBytes();
    void processInbox();
    bool wasDropped() const;
    std::size_t processNext(ByteView bytes);
    template <typename Value> std::size_t process(const Decoded<Value>& decoded);
    LinkAnswer answerTo(const LinkGreeting& host);
    void take(const LinkGreeting& greeting);
    void take(const LinkAnswer& answer);
    void take(const LinkFrame& frame);
    bool isAllowed(const LinkFrame& frame) const;
    void becomeOpen(const LinkAgreement& agreement);
    void peerBrokeRule();
    void peerClosed();
    void silenceElapsed();
    void deadlineElapsed();
    void write(Bytes bytes);
    void bytesTaken();
    void keepAlive();
    void leave(Bytes lastWords, LinkEnd end);
    void end(const LinkEnd& end);

    LinkSide mSide;
    LinkGreeting mSpeaks;
    LinkTimes mTimes;
    std::weak_ptr<LinkConnectionDelegate> mDelegate;
    /// What the socket reads from, so that it is destroyed first.
    std::deque<Bytes> mUnsent;
    std::size_t mUnsentSize = 0; ///< of all of `mUnsent`
    bool mRoomIsAwaited = false;
    std::unique_ptr<QTcpSocket> mSocket;
    QTimer mDeadline; ///< of the greeting, then of the farewell
    QTimer mSilence;
    QTimer mKeepAlive;
    State mState = State::greeting;
    bool mWasOpened = false;
    bool mSilenceSuspected = false;
    Bytes mInbox;
    LinkAgreement mAgreement;
    LinkEnd mEndAfterLeaving;
    std::string mPeerAddress;
};

} // namespace farview
