// From the agreement to an open connection: encryption, and who the peer is.

#include "Link/LinkConnection.h"

#include "Link/Encryption.h"

#include <QSslCipher>

#include <utility>

namespace farview
{

void LinkConnection::secure(const LinkAgreement& agreement)
{
    mAgreement = agreement;
#ifdef FARVIEW_MEASURES_LINK_IN_CLEAR
    // A benchmark tells by such programs what encryption costs. No product is built so.
    QObject::connect(
        mSocket.get(), &QSslSocket::bytesWritten, mSocket.get(), [this] { bytesTaken(); },
        Qt::QueuedConnection);
    mState = State::meeting;
    mSilence.start(mTimes.silence);
    mKeepAlive.start(mTimes.keepAlive);
    return becomeOpen();
#endif
    mState = State::securing;
    mDeadline.start(mTimes.greeting);
    mSocket->setSslConfiguration(encryptionSettings(mKey, mAgreedBytes));
    if (mSide == LinkSide::host)
        mSocket->startClientEncryption();
    else
        mSocket->startServerEncryption();
}

void LinkConnection::becameSecure()
{
    if (mState != State::securing)
        return;
    if (const auto peer = provedKey(*mSocket, mAgreedBytes))
        meet(*peer);
    else
        end({LinkEndReason::notSecured, "The peer proved no key that can be relied upon."});
}

void LinkConnection::meet(const LinkDigest& peer)
{
    mState = State::meeting;
    mPeerKey = hexadecimal(peer);
    mSilence.start(mTimes.silence);
    mKeepAlive.start(mTimes.keepAlive);
    const auto delegate = mDelegate.lock();
    const LinkTrust trust = delegate ? delegate->linkDidProveKey(*this) : LinkTrust(LinkGoodbye{});
    if (wasLeft())
        return;
    if (const auto* goodbye = std::get_if<LinkGoodbye>(&trust))
        return close(*goodbye);
    const bool isHost = mSide == LinkSide::host;
    PairingFacts facts{.hostKey = isHost ? mKey.fingerprint : peer,
                       .deviceKey = isHost ? peer : mKey.fingerprint,
                       .agreement = mAgreedBytes};
    mIntroduction.emplace(mSide, std::get<bool>(trust), std::move(facts));
    write(mIntroduction->standing());
    readBytes();
}

void LinkConnection::introduce(const LinkFrame& frame)
{
    std::vector<LinkFrame> reply;
    const auto step = mIntroduction->take(frame, reply);
    follow(step, reply);
}

void LinkConnection::follow(Introduction::Step step, const std::vector<LinkFrame>& reply)
{
    for (const LinkFrame& frame : reply)
        write(frame);
    if (step == Introduction::Step::broken)
        peerBrokeRule();
    if (step == Introduction::Step::done)
        becomeOpen();
    if (step == Introduction::Step::strange)
        pair();
    if (step != Introduction::Step::compare)
        return;
    mDeadline.start(mTimes.comparing);
    if (const auto delegate = mDelegate.lock())
        delegate->linkAsksUser(*this);
}

void LinkConnection::pair()
{
    const auto delegate = mDelegate.lock();
    const auto reason = delegate ? delegate->linkMayNotAskUser(*this) : LinkGoodbye{};
    if (wasLeft())
        return;
    if (reason)
        return close(*reason);
    std::vector<LinkFrame> reply;
    mIntroduction->beginPairing(reply);
    follow(Introduction::Step::goesOn, reply);
}

void LinkConnection::becomeOpen()
{
    if (mState != State::meeting)
        return;
    mState = State::open;
    mWasOpened = true;
    mDeadline.stop();
    if (const auto delegate = mDelegate.lock())
        delegate->linkDidOpen(*this);
}

void LinkConnection::confirm()
{
    if (mState != State::meeting || !mIntroduction)
        return;
    std::vector<LinkFrame> reply;
    const auto step = mIntroduction->confirm(reply);
    for (const LinkFrame& frame : reply)
        write(frame);
    // The report comes on its own turn.
    if (step == Introduction::Step::done)
        QMetaObject::invokeMethod(
            mSocket.get(),
            [weak = weak_from_this()] {
                if (const auto self = weak.lock())
                    self->becomeOpen();
            },
            Qt::QueuedConnection);
}

std::string LinkConnection::cipher() const { return mSocket->sessionCipher().name().toStdString(); }

} // namespace farview
