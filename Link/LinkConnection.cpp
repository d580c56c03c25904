#include "Link/LinkConnection.h"

#include <QHostAddress>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <utility>

namespace farview
{

namespace
{

constexpr qint64 readAtOnce = qint64{64} * 1024;
/// After its time a silent peer gets this long: when this process itself was stopped, the peer's
/// bytes wait in the socket and are read first.
constexpr std::chrono::milliseconds secondLook{100};

std::string numericAddress(QHostAddress address)
{
    bool isMapped = false;
    const quint32 mapped = address.toIPv4Address(&isMapped);
    if (isMapped)
        return QHostAddress(mapped).toString().toStdString();
    address.setScopeId(QString());
    return address.toString().toStdString();
}

/// The system accepts only little beyond what it can send now: the rest waits here, where it is
/// counted. Where the system does not know the option, more waits there.
void keepSystemsQueueShort(const QSslSocket& socket)
{
    constexpr int limit = 32 * 1024;
    ::setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, TCP_NOTSENT_LOWAT,
                 &limit, sizeof limit);
}

} // namespace

std::shared_ptr<LinkConnection> LinkConnection::make(LinkSide side,
                                                     std::unique_ptr<QSslSocket> socket,
                                                     std::weak_ptr<LinkConnectionDelegate> delegate,
                                                     const OwnKey& key, const LinkGreeting& speaks,
                                                     LinkTimes times)
{
    std::shared_ptr<LinkConnection> connection(
        new LinkConnection(side, std::move(socket), std::move(delegate), key, speaks, times));
    connection->begin();
    return connection;
}

LinkConnection::LinkConnection(LinkSide side, std::unique_ptr<QSslSocket> socket,
                               std::weak_ptr<LinkConnectionDelegate> delegate, OwnKey key,
                               const LinkGreeting& speaks, LinkTimes times)
    : mSide(side), mKey(std::move(key)), mSpeaks(speaks), mTimes(times),
      mDelegate(std::move(delegate)), mSocket(std::move(socket)),
      mPeerAddress(numericAddress(mSocket->peerAddress()))
{
}

LinkConnection::~LinkConnection() { mSocket->disconnect(); }

void LinkConnection::begin()
{
    const auto later = [this](void (LinkConnection::*operation)()) {
        return [weak = weak_from_this(), operation] {
            if (const auto self = weak.lock())
                ((*self).*operation)();
        };
    };
    // Queued: the socket reports some errors inside our own calls.
    QObject* context = mSocket.get();
    QObject::connect(mSocket.get(), &QSslSocket::readyRead, context,
                     later(&LinkConnection::readBytes), Qt::QueuedConnection);
    QObject::connect(mSocket.get(), &QSslSocket::disconnected, context,
                     later(&LinkConnection::peerClosed), Qt::QueuedConnection);
    QObject::connect(mSocket.get(), &QSslSocket::errorOccurred, context,
                     later(&LinkConnection::peerClosed), Qt::QueuedConnection);
    QObject::connect(mSocket.get(), &QSslSocket::encrypted, context,
                     later(&LinkConnection::becameSecure), Qt::QueuedConnection);
    QObject::connect(mSocket.get(), &QSslSocket::encryptedBytesWritten, context,
                     later(&LinkConnection::bytesTaken), Qt::QueuedConnection);
    QObject::connect(&mSilence, &QTimer::timeout, context, later(&LinkConnection::silenceElapsed));
    QObject::connect(&mKeepAlive, &QTimer::timeout, context, later(&LinkConnection::keepAlive));
    QObject::connect(&mDeadline, &QTimer::timeout, context,
                     later(&LinkConnection::deadlineElapsed));
    for (QTimer* timer : {&mDeadline, &mSilence, &mKeepAlive})
        timer->setSingleShot(true);

    mSocket->setReadBufferSize(4 * readAtOnce);
    mSocket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    keepSystemsQueueShort(*mSocket);
    mDeadline.start(mTimes.greeting);
    if (mSide == LinkSide::host) {
        mAgreedBytes = encodeGreeting(mSpeaks);
        write(mAgreedBytes);
    }
    // What came before we listened announces itself no more.
    QMetaObject::invokeMethod(context, later(&LinkConnection::readBytes), Qt::QueuedConnection);
    if (mSocket->state() != QAbstractSocket::ConnectedState)
        QMetaObject::invokeMethod(context, later(&LinkConnection::peerClosed),
                                  Qt::QueuedConnection);
}

// --- what the peer sends ---------------------------------------------------------------------

void LinkConnection::readBytes()
{
    // What comes while encryption begins is not for us.
    const auto isOurs = [this] { return mState != State::securing && mState != State::ended; };
    while (isOurs() && !wasDropped() && mSocket->bytesAvailable() > 0) {
        const QByteArray chunk = mSocket->read(readAtOnce);
        if (chunk.isEmpty())
            return;
        mSilenceSuspected = false;
        if (isTalking())
            mSilence.start(mTimes.silence);
        if (mState == State::leaving)
            continue;
        mInbox.insert(mInbox.end(), chunk.begin(), chunk.end());
        processInbox();
    }
}

void LinkConnection::processInbox()
{
    std::size_t done = 0;
    while (done < mInbox.size() && !wasDropped()) {
        const std::size_t consumed = processNext(ByteView(mInbox).subspan(done));
        if (consumed == 0)
            break;
        done += consumed;
    }
    mInbox.erase(mInbox.begin(), mInbox.begin() + static_cast<std::ptrdiff_t>(done));
}

/// Whether the owner let go during a report: then only the handler that is running keeps it alive.
bool LinkConnection::wasDropped() const { return weak_from_this().use_count() <= 1; }

std::size_t LinkConnection::processNext(ByteView bytes)
{
    switch (mState) {
    case State::greeting:
        return mSide == LinkSide::device ? processAgreement(decodeGreeting(bytes), bytes)
                                         : processAgreement(decodeAnswer(bytes), bytes);
    case State::meeting:
        return process(decodeFrame(bytes, kLinkShortPayloadLimit));
    case State::open:
        return process(decodeFrame(bytes));
    case State::deciding:
    case State::securing:
        // A host says nothing before it was accepted, nobody anything behind that unencrypted.
        peerBrokeRule();
        return 0;
    default:
        return 0;
    }
}

template <typename Value>
std::size_t LinkConnection::processAgreement(const Decoded<Value>& decoded, ByteView bytes)
{
    const ByteView agreed = bytes.first(decoded.consumed);
    mAgreedBytes.insert(mAgreedBytes.end(), agreed.begin(), agreed.end());
    return process(decoded);
}

template <typename Value> std::size_t LinkConnection::process(const Decoded<Value>& decoded)
{
    if (decoded.status == DecodeStatus::malformed)
        peerBrokeRule();
    if (decoded.status == DecodeStatus::complete)
        take(decoded.value);
    return decoded.consumed;
}

void LinkConnection::take(const LinkGreeting& greeting)
{
    const LinkAnswer answer = answerTo(greeting);
    if (const auto* refusal = std::get_if<LinkRefusal>(&answer)) {
        const bool disagree = refusal->code == LinkRefusalCode::noAgreement;
        leave(encodeAnswer(answer),
              {disagree ? LinkEndReason::noAgreement : LinkEndReason::closedHere, refusal->text});
        return;
    }
    mAgreement = std::get<LinkAgreement>(answer);
    mState = State::deciding;
    if (const auto delegate = mDelegate.lock())
        delegate->linkDidGreet(*this);
}

/// A host that only asks hears what any host would hear now; else that it cannot be served so.
LinkAnswer LinkConnection::answerTo(const LinkGreeting& host)
{
    const auto delegate = mDelegate.lock();
    if (delegate && isProbing(host)) {
        if (const auto refusal = delegate->linkWouldRefuse(*this))
            return *refusal;
    }
    return agreementBetween(host, mSpeaks);
}

void LinkConnection::take(const LinkAnswer& answer)
{
    if (const auto* refusal = std::get_if<LinkRefusal>(&answer)) {
        const bool noAgreement = refusal->code == LinkRefusalCode::noAgreement;
        end({noAgreement ? LinkEndReason::noAgreement : LinkEndReason::refused, refusal->text,
             refusal->code});
        return;
    }
    const auto& agreement = std::get<LinkAgreement>(answer);
    if (agreementFits(agreement, mSpeaks))
        secure(agreement);
    else
        end({LinkEndReason::noAgreement, "The device answered what was not offered."});
}

void LinkConnection::take(const LinkFrame& frame)
{
    if (!isAllowed(frame)) {
        peerBrokeRule();
        return;
    }
    if (const auto* goodbye = std::get_if<LinkGoodbye>(&frame)) {
        end({LinkEndReason::goodbye, goodbye->text, std::nullopt, goodbye->code});
        return;
    }
    if (std::holds_alternative<LinkKeepAlive>(frame))
        return;
    if (mState == State::meeting)
        introduce(frame);
    else if (const auto delegate = mDelegate.lock())
        delegate->linkDidReceive(*this, frame);
}

bool LinkConnection::isAllowed(const LinkFrame& frame) const
{
    const bool isAnyTime =
        std::holds_alternative<LinkKeepAlive>(frame) || std::holds_alternative<LinkGoodbye>(frame);
    const bool isInTime = isAnyTime || isOfIntroduction(frame) == (mState == State::meeting);
    return isInTime && (mSide == LinkSide::device ? isFromHost(frame) : isFromDevice(frame)) &&
           isAgreed(frame);
}

// --- what the owner asks for -----------------------------------------------------------------

void LinkConnection::accept()
{
    if (mState != State::deciding)
        return;
    const Bytes answer = encodeAnswer(mAgreement);
    mAgreedBytes.insert(mAgreedBytes.end(), answer.begin(), answer.end());
    write(answer);
    secure(LinkAgreement(mAgreement));
}

void LinkConnection::refuse(const LinkRefusal& refusal)
{
    if (mSide == LinkSide::device && (mState == State::greeting || mState == State::deciding))
        leave(encodeAnswer(refusal), {LinkEndReason::closedHere, refusal.text});
}

void LinkConnection::send(const LinkFrame& frame)
{
    if (mState == State::open && isAgreed(frame) && !isOfIntroduction(frame))
        write(frame);
}

void LinkConnection::close(const LinkGoodbye& goodbye)
{
    if (mState == State::leaving || mState == State::ended)
        return;
    const bool isHeard = isTalking();
    leave(isHeard ? encodeFrame(goodbye) : Bytes{}, {LinkEndReason::closedHere, goodbye.text});
    if (!isHeard)
        mDeadline.start(0);
}

// --- the end ---------------------------------------------------------------------------------

void LinkConnection::peerBrokeRule()
{
    const LinkEnd end{LinkEndReason::brokenRule, "The peer does not speak this link's language."};
    if (isTalking())
        leave(encodeFrame(LinkGoodbye{LinkGoodbyeCode::brokenRule, ""}), end);
    else if (mSide == LinkSide::device && mState != State::securing)
        leave(encodeAnswer(LinkRefusal{LinkRefusalCode::notAGreeting, ""}), end);
    else
        this->end(end);
}

void LinkConnection::peerClosed()
{
    // Its last words may still wait to be read.
    readBytes();
    const auto error = mSocket->error();
    const bool isOfEncryption = error == QAbstractSocket::SslHandshakeFailedError ||
                                error == QAbstractSocket::SslInternalError ||
                                error == QAbstractSocket::SslInvalidUserDataError;
    if (mState == State::leaving)
        end(mEndAfterLeaving);
    else if (isOfEncryption)
        end({LinkEndReason::notSecured, "The connection cannot be encrypted as both sides agreed: "
                                        "somebody may be changing what they say."});
    else
        end({LinkEndReason::lost, "The connection was lost."});
}

/// Without a goodbye: that nobody answers is no refusal.
void LinkConnection::deadlineElapsed()
{
    if (mState == State::leaving)
        end(mEndAfterLeaving);
    else if (mState == State::greeting || mState == State::deciding)
        end({LinkEndReason::notAnswered, "No greeting came in time."});
    else
        end({LinkEndReason::notAnswered, digits().empty()
                                             ? "The peer did not introduce itself in time."
                                             : "Nobody confirmed in time."});
}

void LinkConnection::silenceElapsed()
{
    if (!isTalking())
        return;
    if (mSilenceSuspected) {
        end({LinkEndReason::silent, "The peer stopped answering."});
        return;
    }
    mSilenceSuspected = true;
    mSilence.start(secondLook);
}

void LinkConnection::write(const LinkFrame& frame)
{
    write(encodeFrameHead(frame));
    if (const auto* picture = std::get_if<LinkScreenRectangle>(&frame))
        write(picture->data);
}

void LinkConnection::write(const Bytes& bytes)
{
    mSocket->write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    mRoomIsAwaited = mRoomIsAwaited || !hasRoom();
    if (isTalking())
        mKeepAlive.start(mTimes.keepAlive);
    if (mState == State::open && unsent() > kLinkUnsentLimit) {
        leave({}, {LinkEndReason::silent, "The peer does not read what it is sent."});
        mDeadline.start(0);
    }
}

void LinkConnection::bytesTaken()
{
    if (mState != State::open || !hasRoom() || !std::exchange(mRoomIsAwaited, false))
        return;
    if (const auto delegate = mDelegate.lock())
        delegate->linkHasRoom(*this);
}

/// What waits already is a sign of life when it arrives.
void LinkConnection::keepAlive()
{
    if (unsent() == 0)
        write(LinkFrame(LinkKeepAlive{}));
    else
        mKeepAlive.start(mTimes.keepAlive);
}

/// Stays until the peer has closed: closing over unread bytes could take our last words back.
void LinkConnection::leave(const Bytes& lastWords, LinkEnd end)
{
    mSilence.stop();
    mKeepAlive.stop();
    mState = State::leaving;
    mEndAfterLeaving = std::move(end);
    write(lastWords);
    mSocket->flush();
    mDeadline.start(mTimes.farewell);
}

void LinkConnection::end(const LinkEnd& end)
{
    if (mState == State::ended)
        return;
    mState = State::ended;
    for (QTimer* timer : {&mDeadline, &mSilence, &mKeepAlive})
        timer->stop();
    mSocket->abort();
    LinkEnd told = end;
    told.isGuessSpent = !mWasOpened && mIntroduction && mIntroduction->isGuessSpent();
    if (const auto delegate = mDelegate.lock())
        delegate->linkDidEnd(*this, told);
}

} // namespace farview
