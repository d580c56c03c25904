#include "Link/Encryption.h"

#include "Link/Keys/PairingProof.h"

#include <QSslCipher>
#include <QSslEllipticCurve>
#include <QSslSocket>

#include <algorithm>

#ifdef __aarch64__
#include <sys/auxv.h>
#endif

namespace farview
{

namespace
{

bool computesAesItself()
{
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_cpu_supports("aes") != 0;
#elif defined(__aarch64__)
    return (::getauxval(AT_HWCAP) & HWCAP_AES) != 0;
#else
    return false;
#endif
}

QList<QSslCipher> ciphers()
{
    QList<QSslCipher> list{QSslCipher(QStringLiteral("TLS_AES_256_GCM_SHA384")),
                           QSslCipher(QStringLiteral("TLS_CHACHA20_POLY1305_SHA256"))};
    if (!computesAesItself())
        std::swap(list[0], list[1]);
    return list;
}

QByteArray protocolName(ByteView agreement)
{
    return QByteArray::fromStdString("farview-" + hexadecimal(sha256(agreement)));
}

} // namespace

QSslConfiguration encryptionSettings(const OwnKey& key, ByteView agreement)
{
    QSslConfiguration settings;
    settings.setProtocol(QSsl::TlsV1_3OrLater);
    settings.setPrivateKey(key.secret);
    settings.setLocalCertificate(key.certificate);
    settings.setCaCertificates({});
    // Certificates are asked for, but nobody vouches for them: their keys are compared.
    settings.setPeerVerifyMode(QSslSocket::QueryPeer);
    settings.setAllowedNextProtocols({protocolName(agreement)});
    settings.setCiphers(ciphers());
    settings.setEllipticCurves({QSslEllipticCurve::fromShortName(QStringLiteral("X25519")),
                                QSslEllipticCurve::fromShortName(QStringLiteral("prime256v1"))});
    // Whichever side would have to compute AES by hand decides: a device that need not follows.
    settings.setSslOption(QSsl::SslOptionDisableServerCipherPreference, computesAesItself());
    settings.setSslOption(QSsl::SslOptionDisableSessionTickets, true);
    settings.setSslOption(QSsl::SslOptionDisableSessionSharing, true);
    settings.setSslOption(QSsl::SslOptionDisableSessionPersistence, true);
    return settings;
}

std::optional<LinkDigest> provedKey(const QSslSocket& socket, ByteView agreement)
{
    const bool isAsAgreed =
        socket.isEncrypted() && socket.sessionProtocol() == QSsl::TlsV1_3 &&
        socket.sslConfiguration().nextNegotiatedProtocol() == protocolName(agreement);
    return isAsAgreed ? fingerprint(socket.peerCertificate()) : std::nullopt;
}

} // namespace farview
