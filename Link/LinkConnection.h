#pragma once

#include "Link/Wire/LinkCodec.h"
#include "Link/LinkEnd.h"

#include <QByteArray>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>
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
    /// the frame needs.
    void send(const LinkFrame& frame);
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
    std::size_t processGreeting(ByteView bytes);
    LinkAnswer answerTo(const LinkGreeting& host);
    std::size_t processAnswer(ByteView bytes);
    std::size_t processFrame(ByteView bytes);
    void take(const LinkAnswer& answer);
    void take(const LinkFrame& frame);
    bool isAllowed(const LinkFrame& frame) const;
    void becomeOpen(const LinkAgreement& agreement);
    void peerBrokeRule();
    void peerClosed();
    void silenceElapsed();
    void deadlineElapsed();
    void write(const Bytes& bytes);
    void leave(const Bytes& lastWords, LinkEnd end);
    void end(const LinkEnd& end);

    LinkSide mSide;
    LinkGreeting mSpeaks;
    LinkTimes mTimes;
    std::weak_ptr<LinkConnectionDelegate> mDelegate;
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
