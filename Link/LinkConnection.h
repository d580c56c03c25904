#pragma once

#include "Link/Introduction.h"
#include "Link/Keys/OwnKey.h"
#include "Link/LinkEnd.h"
#include "Link/Wire/LinkCodec.h"

#include <QSslSocket>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// How long a connection waits for what. Changed by tests only.
struct LinkTimes {
    /// Until greeting and answer are complete, and then until the two have introduced themselves.
    std::chrono::milliseconds greeting{5000};
    /// For the users to compare digits.
    std::chrono::milliseconds comparing{120000};
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

/// Whether a peer's key is known, or why the peer is sent away.
using LinkTrust = std::variant<bool, LinkGoodbye>;

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
    /// The peer has proved that it has the key `peerKey()`: whether that is known here, or the
    /// goodbye for it.
    virtual LinkTrust linkDidProveKey(LinkConnection& connection) = 0;
    /// One side does not know the other: nothing when the user may be asked, else the goodbye. Up
    /// to here nothing was told that helps in guessing digits.
    virtual std::optional<LinkGoodbye> linkMayNotAskUser(LinkConnection&) { return std::nullopt; }
    /// The digits are known: the user is to compare `digits()` with what the other side
    /// shows, and then to `confirm` or `close`.
    virtual void linkAsksUser(LinkConnection&) {}
    /// Each side knows the other, or its user has just confirmed it (`wasPaired`). Frames may be
    /// sent from now on.
    virtual void linkDidOpen(LinkConnection& connection) = 0;
    /// Options or a screen rectangle; signs of life and goodbyes are kept by the connection.
    virtual void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) = 0;
    /// There is room for the next picture again, after `hasRoom` was false.
    virtual void linkHasRoom(LinkConnection&) {}
    /// The last call, exactly once, unless the connection was dropped before.
    virtual void linkDidEnd(LinkConnection& connection, const LinkEnd& end) = 0;
};

/// One connection between a host and a device, seen from either side, from the moment the socket is
/// connected: greeting, agreement, encryption, introduction, frames, signs of life, goodbye. Main
/// thread only.
class LinkConnection : public std::enable_shared_from_this<LinkConnection>
{
public:
    /// Begins at once. The socket is connected already. Nothing is reported before the next turn.
    static std::shared_ptr<LinkConnection> make(LinkSide side, std::unique_ptr<QSslSocket> socket,
                                                std::weak_ptr<LinkConnectionDelegate> delegate,
                                                const OwnKey& key, const LinkGreeting& speaks,
                                                LinkTimes times);
    /// Breaks the connection off, without a word.
    ~LinkConnection();
    LinkConnection(const LinkConnection&) = delete;
    LinkConnection& operator=(const LinkConnection&) = delete;

    /// Device side, after `linkDidGreet`; ignored at any other time.
    void accept();
    /// Device side, before `accept`; ignored at any other time.
    void refuse(const LinkRefusal& refusal);
    /// Sends a frame while the connection is open; ignored otherwise, and without the feature that
    /// the frame needs. Returns at once. Everything arrives in the order of these calls, so a
    /// picture is sent only while there is room, and in packets that take a fraction of a second:
    /// the next goodbye waits until it has gone.
    void send(const LinkFrame& frame);
    /// This side's user has compared the digits and trusts the peer; ignored at any other time.
    void confirm();
    /// How many bytes wait here because the network did not take them yet.
    std::size_t unsent() const
    {
        return static_cast<std::size_t>(mSocket->bytesToWrite() + mSocket->encryptedBytesToWrite());
    }
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
    /// Of the key that the peer proved to have, as hexadecimal digits; empty before.
    const std::string& peerKey() const { return mPeerKey; }
    /// What the user compares; empty while there is nothing to compare.
    std::string digits() const { return mIntroduction ? mIntroduction->digits() : std::string(); }
    /// Whether the two became known to each other on this connection, by their users.
    bool wasPaired() const { return mWasOpened && !digits().empty(); }
    /// How it is encrypted: the name of the algorithms, as TLS has it.
    std::string cipher() const;

private:
    enum class State { greeting, deciding, securing, meeting, open, leaving, ended };

    LinkConnection(LinkSide side, std::unique_ptr<QSslSocket> socket,
                   std::weak_ptr<LinkConnectionDelegate> delegate, OwnKey key,
                   const LinkGreeting& speaks, LinkTimes times);
    void begin();
    void readBytes();
    void processInbox();
    bool wasDropped() const;
    std::size_t processNext(ByteView bytes);
    template <typename Value>
    std::size_t processAgreement(const Decoded<Value>& decoded, ByteView bytes);
    template <typename Value> std::size_t process(const Decoded<Value>& decoded);
    LinkAnswer answerTo(const LinkGreeting& host);
    void take(const LinkGreeting& greeting);
    void take(const LinkAnswer& answer);
    void take(const LinkFrame& frame);
    bool isAllowed(const LinkFrame& frame) const;
    bool isAgreed(const LinkFrame& frame) const
    {
        const char* feature = featureFor(frame);
        return !feature || mAgreement.has(feature);
    }
    void secure(const LinkAgreement& agreement);
    void becameSecure();
    void meet(const LinkDigest& peer);
    void introduce(const LinkFrame& frame);
    void pair();
    /// Whether the owner closed or dropped it during a report.
    bool wasLeft() const { return mState != State::meeting || wasDropped(); }
    void follow(Introduction::Step step, const std::vector<LinkFrame>& reply);
    void becomeOpen();
    bool isTalking() const { return mState == State::meeting || mState == State::open; }
    void peerBrokeRule();
    void peerClosed();
    void silenceElapsed();
    void deadlineElapsed();
    void write(const Bytes& bytes);
    void write(const LinkFrame& frame);
    void bytesTaken();
    void keepAlive();
    void leave(const Bytes& lastWords, LinkEnd end);
    void end(const LinkEnd& end);

    LinkSide mSide;
    OwnKey mKey;
    LinkGreeting mSpeaks;
    LinkTimes mTimes;
    std::weak_ptr<LinkConnectionDelegate> mDelegate;
    bool mRoomIsAwaited = false;
    std::unique_ptr<QSslSocket> mSocket;
    QTimer mDeadline; ///< of greeting, introduction, comparing, then of the farewell
    QTimer mSilence;
    QTimer mKeepAlive;
    State mState = State::greeting;
    bool mWasOpened = false;
    bool mSilenceSuspected = false;
    Bytes mInbox;
    LinkAgreement mAgreement;
    Bytes mAgreedBytes; ///< of greeting and answer, as they travelled
    std::optional<Introduction> mIntroduction;
    std::string mPeerKey;
    LinkEnd mEndAfterLeaving;
    std::string mPeerAddress;
};

} // namespace farview
