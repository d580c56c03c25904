// Certificates of peers, as the handshake hands them over, and what they are known by.

#include "Link/Keys/PairingProof.h"
#include "Tests/Fuzz/Expect.h"

#include <QSslCertificate>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const auto der =
        QByteArray::fromRawData(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const QSslCertificate certificate(der, QSsl::Der);
    const auto print = farview::fingerprint(certificate);
    expect(!print || !certificate.isNull(), "nothing has no fingerprint");
    const QSslCertificate again(certificate.toDer(), QSsl::Der);
    expect(!print || farview::fingerprint(again) == print, "a copy has the same");
    return 0;
}
