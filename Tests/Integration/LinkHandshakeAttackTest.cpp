// Attacks on what happens before the link knows who is there: encryption that is weaker than
// agreed, larger than needed, or never complete.

#include "Tests/Integration/LinkAttack.h"

#include <QSslEllipticCurve>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/x509v3.h>

#include <functional>
#include <vector>

namespace farview
{
namespace
{

using testing::HasSubstr;
using testing::Not;

/// The same certificate, with a long comment. Its signature is wrong now, but nobody looks at that.
QSslCertificate ofTenMegabytes(const QSslCertificate& small)
{
    const QByteArray der = small.toDer();
    auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
    X509* const certificate = d2i_X509(nullptr, &bytes, der.size());
    X509_EXTENSION* const comment = X509V3_EXT_conf_nid(nullptr, nullptr, NID_netscape_comment,
                                                        std::string(10 << 20, 'x').c_str());
    X509_add_ext(certificate, comment, -1);
    i2d_re_X509_tbs(certificate, nullptr);
    unsigned char* large = nullptr;
    const int size = i2d_X509(certificate, &large);
    EXPECT_GT(size, 10 << 20);
    const QSslCertificate result(QByteArray(reinterpret_cast<char*>(large), size), QSsl::Der);
    OPENSSL_free(large);
    X509_EXTENSION_free(comment);
    X509_free(certificate);
    return result;
}

struct Weakness {
    const char* name;
    std::function<void(QSslConfiguration&)> apply;
};

std::vector<Weakness> weaknesses()
{
    return {
        {"TLS 1.2", [](auto& settings) { settings.setProtocol(QSsl::TlsV1_2); }},
        {"a weak group",
         [](auto& settings) {
             settings.setBackendConfigurationOption("Groups", QByteArray("ffdhe2048"));
         }},
        {"another ALPN", [](auto& settings) { settings.setAllowedNextProtocols({"h2"}); }},
        {"no ALPN", [](auto& settings) { settings.setAllowedNextProtocols({}); }},
        {"a certificate of 10 MB",
         [](auto& settings) {
             settings.setLocalCertificate(ofTenMegabytes(settings.localCertificate()));
         }},
    };
}

/// A peer that does by hand what comes before the first frame.
class Peer
{
public:
    Peer(LinkSide side, std::unique_ptr<QSslSocket> connected)
        : mSide(side), mSocket(std::move(connected))
    {
        mAgreed = side == LinkSide::host ? encodeGreeting(ownGreeting()) : readBytes(*mSocket, 1);
        if (side == LinkSide::host)
            writeBytes(*mSocket, mAgreed);
        const Bytes answer =
            side == LinkSide::host
                ? readBytes(*mSocket, 1)
                : encodeAnswer(agreementBetween(decodeGreeting(mAgreed).value, ownGreeting()));
        if (side == LinkSide::device)
            writeBytes(*mSocket, answer);
        mAgreed.insert(mAgreed.end(), answer.begin(), answer.end());
    }
    /// Whether the other side says its first frame to whoever encrypts so.
    bool isMet(const std::function<void(QSslConfiguration&)>& change)
    {
        auto settings = encryptionSettings(keyOf(mSide), mAgreed);
        change(settings);
        mSocket->setSslConfiguration(settings);
        if (mSide == LinkSide::host)
            mSocket->startClientEncryption();
        else
            mSocket->startServerEncryption();
        EXPECT_TRUE(waitUntil([this] { return hasHeard() || isGone(); }));
        return hasHeard();
    }
    /// A handshake that begins and stays there.
    void beginHandshake()
    {
        if (mSide == LinkSide::device)
            readBytes(*mSocket, 1); // nothing may come before the host's first word
        writeBytes(*mSocket, {0x16, 3, 3, 0x40, 0});
    }
    void send(const LinkFrame& frame) { writeBytes(*mSocket, encodeFrame(frame)); }
    /// Whether a frame of that size has come since the first.
    bool hears(std::size_t size)
    {
        const std::size_t standing = encodeFrame(LinkStanding{}).size();
        const std::size_t expected = standing + size;
        return waitUntil(
            [&] { return mSocket->bytesAvailable() >= static_cast<qint64>(expected); });
    }
    void hangUp() { mSocket->abort(); }
    bool isGone() const { return mSocket->state() == QAbstractSocket::UnconnectedState; }

private:
    bool hasHeard() const { return mSocket->isEncrypted() && mSocket->bytesAvailable() > 0; }

    LinkSide mSide;
    std::unique_ptr<QSslSocket> mSocket;
    Bytes mAgreed;
};

void goodGroup(QSslConfiguration& settings)
{
    settings.setBackendConfigurationOption("Groups", QByteArray("P-256"));
}

/// A false device in the real one's place.
class FalseDevice
{
public:
    FalseDevice() { mListener.listen(QHostAddress::LocalHost, 6001); }
    Peer met()
    {
        EXPECT_TRUE(waitUntil([this] { return mListener.hasPendingConnections(); }));
        return {LinkSide::device, mListener.next()};
    }

private:
    LinkListener mListener;
};

class LinkHandshakeAttack : public LinkAttack
{
protected:
    static Peer host() { return {LinkSide::host, connectedSocket(6001)}; }
    static bool allAreGone(const std::vector<Peer>& peers)
    {
        const auto isGone = [](const Peer& peer) { return peer.isGone(); };
        return waitUntil([&] { return std::all_of(peers.begin(), peers.end(), isGone); });
    }
};

TEST_F(LinkHandshakeAttack, AHostWithWeakerOrLargerEncryptionIsTurnedAway)
{
    startBoth();
    ASSERT_TRUE(host().isMet(goodGroup)) << "the attacks would be empty" << deviceLog();
    const int before = mostMemory(device->pid());
    for (const Weakness& weakness : weaknesses())
        EXPECT_FALSE(host().isMet(weakness.apply)) << weakness.name << deviceLog();
    EXPECT_LT(mostMemory(device->pid()), before + 8);
    EXPECT_THAT(deviceLog(), Not(HasSubstr("Turned away 127.0.0.1: The connection was lost")))
        << "the device ends them, not the host";
    EXPECT_THAT(deviceLog(), Not(HasSubstr("shows")));
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
}

TEST_F(LinkHandshakeAttack, ADeviceWithWeakerOrLargerEncryptionIsShownNothing)
{
    FalseDevice device;
    startServer();
    ask();
    ASSERT_TRUE(device.met().isMet(goodGroup)) << "the attacks would be empty" << serverLog();
    failureOf();
    const int before = mostMemory(serverPid());
    for (const Weakness& weakness : weaknesses()) {
        ask();
        EXPECT_FALSE(device.met().isMet(weakness.apply)) << weakness.name << serverLog();
        EXPECT_EQ(failureOf(), State::interfered) << weakness.name;
    }
    EXPECT_LT(mostMemory(serverPid()), before + 8);
}

TEST_F(LinkHandshakeAttack, ThirtyHandshakesThatNeverEndKeepNobodyOut)
{
    startBoth();
    const int before = mostMemory(device->pid());
    std::vector<Peer> peers;
    for (int number = 0; number < 30; ++number) {
        peers.push_back(host());
        peers.back().beginHandshake();
    }
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
    EXPECT_TRUE(allAreGone(peers)) << "each ends within seconds";
    EXPECT_LT(mostMemory(device->pid()), before + 32);
}

TEST_F(LinkHandshakeAttack, StrangersWhoSendMegabytesFillNoMemory)
{
    startBoth();
    const auto asStranger = [](QSslConfiguration& settings) {
        settings.setPrivateKey(keyOfDevice().secret);
        settings.setLocalCertificate(keyOfDevice().certificate);
    };
    const LinkScreenRectangle large{{}, QLScreenEncodingLibz, Bytes(kLinkScreenDataLimit)};
    std::vector<Peer> peers;
    for (int number = 0; number < 8; ++number) {
        peers.push_back(host());
        ASSERT_TRUE(peers.back().isMet(asStranger)) << deviceLog();
    }
    const int before = mostMemory(device->pid());
    for (Peer& peer : peers)
        peer.send(large);
    EXPECT_TRUE(allAreGone(peers)) << deviceLog();
    EXPECT_LT(mostMemory(device->pid()), before + 32);
    EXPECT_TRUE(connects()) << serverLog() << deviceLog();
}

TEST_F(LinkHandshakeAttack, ADeviceWhoseHandshakeNeverEndsIsGivenUp)
{
    FalseDevice device;
    startServer();
    ask();
    Peer peer = device.met();
    peer.beginHandshake();
    failureOf();
    EXPECT_TRUE(waitUntil([&] { return peer.isGone(); }));
    EXPECT_THAT(serverLog(), HasSubstr("did not introduce itself in time"));
}

/// Who knows the computer's nonce knows its digits, before it shows them: to hang up is a guess.
TEST_F(PairingAttack, ADeviceThatHangsUpWhenItKnowsTheDigitsHasThreeTries)
{
    FalseDevice device;
    startServer();
    for (int attempt = 0; attempt < 3; ++attempt) {
        ask();
        Peer guesser = device.met();
        ASSERT_TRUE(guesser.isMet(goodGroup));
        guesser.send(LinkStanding{false});
        guesser.send(LinkCommitment{});
        ASSERT_TRUE(guesser.hears(encodeFrame(LinkNonce{}).size())) << serverLog();
        guesser.hangUp();
        failureOf();
    }
    ask();
    Peer guesser = device.met();
    ASSERT_TRUE(guesser.isMet(goodGroup));
    guesser.send(LinkStanding{false});
    guesser.send(LinkCommitment{});
    EXPECT_EQ(failureOf(), State::tooManyTries) << serverLog();
}

} // namespace
} // namespace farview
