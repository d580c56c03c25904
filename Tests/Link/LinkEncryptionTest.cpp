#include "Link/Encryption.h"
#include "Link/Keys/PairingProof.h"
#include "Link/LinkConnection.h"

#include "Tests/Link/LinkPeers.h"
#include "Tests/Link/MadeCertificate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include <functional>
#include <map>

using namespace farview;

namespace
{

const LinkAgreement encryptionAgreed{1, {kLinkEncryptionFeature}};
const LinkGreeting encryptionSpoken{1, 1, {{kLinkEncryptionFeature, true}}};

/// The other end of the handshake, made with the library itself: it may do what ours never does.
class TlsPeer
{
public:
    explicit TlsPeer(LinkSide side, const MadeCertificate& shown = MadeCertificate("P-256"))
        : mIsHost(side == LinkSide::host),
          mContext(SSL_CTX_new(mIsHost ? TLS_client_method() : TLS_server_method()), SSL_CTX_free)
    {
        SSL_CTX_set_verify(mContext.get(), SSL_VERIFY_PEER, [](int, X509_STORE_CTX*) { return 1; });
        show(shown);
    }

    SSL_CTX* context() { return mContext.get(); }
    void show(const MadeCertificate& made)
    {
        SSL_CTX_use_certificate(context(), made.certificate.get());
        SSL_CTX_use_PrivateKey(context(), made.key.get());
    }

    /// Begins on a socket where greeting and answer have been exchanged.
    void begin(QSslSocket& socket, const std::string& protocolName)
    {
        mSocket = &socket;
        mName = std::string(1, static_cast<char>(protocolName.size())) + protocolName;
        mSession.reset(SSL_new(context()), SSL_free);
        SSL_set_bio(mSession.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
        const auto* name = reinterpret_cast<const unsigned char*>(mName.data());
        if (!mIsHost) {
            SSL_CTX_set_alpn_select_cb(context(), select, this);
            SSL_set_accept_state(mSession.get());
            return;
        }
        if (!protocolName.empty())
            SSL_set_alpn_protos(mSession.get(), name, static_cast<unsigned>(mName.size()));
        SSL_set_connect_state(mSession.get());
    }
    SSL* session() { return mSession.get(); }
    /// One step of the handshake, and of what follows it.
    void turn()
    {
        const QByteArray came = mSocket->readAll();
        BIO_write(SSL_get_rbio(session()), came.data(), static_cast<int>(came.size()));
        std::array<char, 4096> bytes{};
        int size = SSL_is_init_finished(session()) ? 1 : SSL_do_handshake(session());
        while (size > 0 && (size = SSL_read(session(), bytes.data(), bytes.size())) > 0)
            mHeard.insert(mHeard.end(), bytes.begin(), bytes.begin() + size);
        send();
    }
    void say(const LinkFrame& frame)
    {
        const Bytes bytes = encodeFrame(frame);
        SSL_write(session(), bytes.data(), static_cast<int>(bytes.size()));
        send();
    }
    const Bytes& heard() const { return mHeard; }
    /// Everything that it sent encrypted.
    const Bytes& sent() const { return mSent; }
    /// Changes what is about to be sent.
    std::function<void(Bytes&)> spoil = [](Bytes&) {};

private:
    static int select(SSL*, const unsigned char** out, unsigned char* size, const unsigned char*,
                      unsigned, void* self)
    {
        const std::string& name = static_cast<TlsPeer*>(self)->mName;
        *out = reinterpret_cast<const unsigned char*>(name.data()) + 1;
        *size = static_cast<unsigned char>(name.size() - 1);
        return *size > 0 ? SSL_TLSEXT_ERR_OK : SSL_TLSEXT_ERR_NOACK;
    }
    void send()
    {
        char* data = nullptr;
        const long size = BIO_get_mem_data(SSL_get_wbio(session()), &data);
        Bytes bytes(data, data + size);
        BIO_reset(SSL_get_wbio(session()));
        spoil(bytes);
        mSent.insert(mSent.end(), bytes.begin(), bytes.end());
        writeBytes(*mSocket, bytes);
    }

    bool mIsHost;
    std::shared_ptr<SSL_CTX> mContext;
    std::shared_ptr<SSL> mSession;
    QSslSocket* mSocket = nullptr;
    std::string mName;
    Bytes mHeard;
    Bytes mSent;
};

std::string protocolNameOf(const Bytes& agreement)
{
    return "farview-" + hexadecimal(sha256(agreement));
}

/// Our side, which lets everybody in who gets as far as proving a key.
class LinkEncryption : public testing::TestWithParam<LinkSide>
{
protected:
    LinkSide ours() const { return GetParam(); }
    LinkSide theirs() const { return ours() == LinkSide::host ? LinkSide::device : LinkSide::host; }
    void connect()
    {
        sockets = SocketPair();
        seen = std::make_shared<LinkRecorder>();
        const bool isHost = ours() == LinkSide::host;
        link = LinkConnection::make(ours(), std::move(isHost ? sockets.host : sockets.device), seen,
                                    keyOf(ours()), encryptionSpoken, times);
        stranger = isHost ? sockets.device.get() : sockets.host.get();
    }
    /// Exchanges greeting and answer, with some bytes in clear behind the stranger's; returns what
    /// was agreed.
    Bytes agree(const Bytes& behind = {})
    {
        Bytes greeting = encodeGreeting(encryptionSpoken);
        const Bytes answer = encodeAnswer(encryptionAgreed);
        const bool isHost = ours() == LinkSide::host;
        Bytes said = isHost ? answer : greeting;
        said.insert(said.end(), behind.begin(), behind.end());
        if (isHost)
            readBytes(*stranger, greeting.size());
        writeBytes(*stranger, said);
        if (!isHost && behind.empty())
            readBytes(*stranger, answer.size());
        greeting.insert(greeting.end(), answer.begin(), answer.end());
        return greeting;
    }
    void begin()
    {
        connect();
        peer.begin(*stranger, protocolNameOf(agree()));
    }
    /// Until our side has decided about the key, or ended.
    bool isDecided()
    {
        return waitUntil([&] {
            peer.turn();
            return seen->proved || seen->ended();
        });
    }
    bool opens()
    {
        const bool isSecure = waitUntil([&] {
            peer.turn();
            return seen->ended() || (seen->proved && SSL_is_init_finished(peer.session()) == 1);
        });
        if (!isSecure || seen->ended())
            return false;
        peer.say(LinkStanding{true});
        return waitUntil([&] {
                   peer.turn();
                   return seen->opened || seen->ended();
               }) &&
               seen->opened;
    }
    /// A host's first words of the handshake show that it has taken the answer.
    void awaitHandshake()
    {
        if (ours() == LinkSide::host)
            readBytes(*stranger, 1);
    }
    void expectNotSecured()
    {
        ASSERT_TRUE(isDecided());
        EXPECT_FALSE(seen->proved);
        EXPECT_EQ(seen->reason(), LinkEndReason::notSecured);
    }
    bool isEnded()
    {
        return waitUntil([&] { return seen->ended(); });
    }

    LinkTimes times{};
    SocketPair sockets;
    QSslSocket* stranger = nullptr;
    TlsPeer peer{theirs()};
    std::shared_ptr<LinkRecorder> seen;
    std::shared_ptr<LinkConnection> link;
};

INSTANTIATE_TEST_SUITE_P(Ours, LinkEncryption, testing::Values(LinkSide::host, LinkSide::device),
                         [](const auto& side) {
                             return side.param == LinkSide::host ? "Host" : "Device";
                         });

TEST_P(LinkEncryption, OpensToAPeerThatKeepsToTheRules)
{
    begin();
    ASSERT_TRUE(opens());
    EXPECT_STREQ(SSL_get_version(peer.session()), "TLSv1.3");
}

TEST_P(LinkEncryption, EndsWhenTheTwoKnowDifferentWords)
{
    connect();
    Bytes agreement = agree();
    agreement.back() ^= 1;
    peer.begin(*stranger, protocolNameOf(agreement));
    expectNotSecured();
}

TEST_P(LinkEncryption, EndsWithoutANameOfTheProtocol)
{
    connect();
    agree();
    peer.begin(*stranger, "");
    expectNotSecured();
}

TEST_P(LinkEncryption, EndsForAPeerThatOffersSomethingWeaker)
{
    const std::map<std::string, std::function<void(SSL_CTX*)>> offers{
        {"TLS 1.2", [](SSL_CTX* it) { SSL_CTX_set_max_proto_version(it, TLS1_2_VERSION); }},
        {"another cipher",
         [](SSL_CTX* it) { SSL_CTX_set_ciphersuites(it, "TLS_AES_128_GCM_SHA256"); }},
        {"short tags",
         [](SSL_CTX* it) { SSL_CTX_set_ciphersuites(it, "TLS_AES_128_CCM_8_SHA256"); }},
        {"another group", [](SSL_CTX* it) { SSL_CTX_set1_groups_list(it, "P-384"); }},
        {"a group of primes", [](SSL_CTX* it) { SSL_CTX_set1_groups_list(it, "ffdhe2048"); }},
    };
    for (const auto& [name, offer] : offers) {
        SCOPED_TRACE(name);
        peer = TlsPeer(theirs());
        offer(peer.context());
        begin();
        expectNotSecured();
    }
}

TEST_P(LinkEncryption, EndsForAKeyOfAnotherKind)
{
    for (const char* kind : {"RSA", "P-384", "Ed25519"}) {
        SCOPED_TRACE(kind);
        peer = TlsPeer(theirs(), MadeCertificate(kind));
        begin();
        expectNotSecured();
    }
}

TEST_P(LinkEncryption, EndsForACertificateOfTenMegabytes)
{
    peer.show(MadeCertificate(MadeCertificate::Wish{.extension = 10 << 20}));
    begin();
    expectNotSecured();
}

TEST_P(LinkEncryption, TakesACertificateWhateverTheClockSays)
{
    constexpr long year = 365 * 24 * 3600;
    for (const auto& [begins, ends] :
         {std::pair(-20 * year, -10 * year), std::pair(10 * year, 20 * year)}) {
        peer.show(MadeCertificate(MadeCertificate::Wish{.begins = begins, .ends = ends}));
        begin();
        EXPECT_TRUE(opens());
    }
}

TEST_P(LinkEncryption, KnowsAPeerByTheFirstCertificateOfAChain)
{
    const MadeCertificate own("P-256");
    const MadeCertificate other("P-256");
    peer.show(own);
    SSL_CTX_add1_chain_cert(peer.context(), other.certificate.get());
    begin();
    ASSERT_TRUE(opens());
    EXPECT_EQ(link->peerKey(), hexadecimal(*fingerprint(own.shown())));
}

TEST_P(LinkEncryption, MakesEveryHandshakeInFull)
{
    SSL_CTX_set_session_cache_mode(peer.context(), SSL_SESS_CACHE_BOTH);
    SSL_CTX_set_session_id_context(peer.context(), reinterpret_cast<const unsigned char*>("x"), 1);
    begin();
    ASSERT_TRUE(opens());
    const std::shared_ptr<SSL_SESSION> session(SSL_get1_session(peer.session()), SSL_SESSION_free);
    connect();
    peer.begin(*stranger, protocolNameOf(agree()));
    if (theirs() == LinkSide::host)
        SSL_set_session(peer.session(), session.get());
    ASSERT_TRUE(opens());
    EXPECT_FALSE(SSL_session_reused(peer.session()));
}

TEST_P(LinkEncryption, BelievesNothingInClearBehindTheAgreement)
{
    connect();
    agree(encodeFrame(LinkStanding{true}));
    ASSERT_TRUE(isEnded());
    EXPECT_EQ(seen->reason(), LinkEndReason::brokenRule);
    EXPECT_FALSE(seen->proved);
}

TEST_P(LinkEncryption, BelievesNothingInClearInsteadOfAHandshake)
{
    connect();
    agree();
    awaitHandshake();
    writeBytes(*stranger, encodeFrame(LinkStanding{true}));
    ASSERT_TRUE(isEnded());
    EXPECT_EQ(seen->reason(), LinkEndReason::notSecured);
    EXPECT_FALSE(seen->proved);
}

TEST_P(LinkEncryption, WaitsNotForLongForTheRestOfAHandshake)
{
    times.greeting = std::chrono::milliseconds(300);
    peer.spoil = [](Bytes& bytes) { bytes.resize(bytes.size() / 2); };
    begin();
    ASSERT_TRUE(isDecided());
    EXPECT_EQ(seen->reason(), LinkEndReason::notAnswered);
    EXPECT_FALSE(seen->proved);
}

TEST_P(LinkEncryption, EndsWhenAHandshakeIsPlayedAgain)
{
    begin();
    ASSERT_TRUE(opens());
    const Bytes recorded = peer.sent();
    connect();
    agree();
    awaitHandshake();
    writeBytes(*stranger, recorded);
    ASSERT_TRUE(isEnded());
    EXPECT_EQ(seen->reason(), LinkEndReason::notSecured);
    EXPECT_FALSE(seen->proved);
}

TEST_P(LinkEncryption, EndsWhenSomebodyChangesAByteOnTheWay)
{
    begin();
    ASSERT_TRUE(opens());
    peer.spoil = [](Bytes& bytes) { bytes.back() ^= 1; };
    peer.say(LinkGoodbye{LinkGoodbyeCode::byUser, "believe me"});
    ASSERT_TRUE(isEnded());
    EXPECT_NE(seen->reason(), LinkEndReason::goodbye);
}

TEST_P(LinkEncryption, ACloseWithoutAGoodbyeIsALoss)
{
    begin();
    ASSERT_TRUE(opens());
    stranger->disconnectFromHost();
    ASSERT_TRUE(isEnded());
    EXPECT_EQ(seen->reason(), LinkEndReason::lost);
}

/// A device must not take a host at its word that shows no key at all.
class LinkEncryptionOfDevice : public LinkEncryption
{
};

INSTANTIATE_TEST_SUITE_P(Ours, LinkEncryptionOfDevice, testing::Values(LinkSide::device));

TEST_P(LinkEncryptionOfDevice, EndsForAHostWithoutACertificate)
{
    begin();
    SSL_certs_clear(peer.session());
    expectNotSecured();
}

} // namespace
