#include "Link/Keys/PairingProof.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QSslCertificate>

#include <openssl/x509.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace farview
{

namespace
{

constexpr std::string_view commitmentPurpose = "farview commit 1";
constexpr std::string_view digitsPurpose = "farview code 1";
/// How the SubjectPublicKeyInfo of every key on P-256 begins, and how long it is with the point.
constexpr std::array<std::uint8_t, 27> keyOnCurve{
    0x30, 0x59, 0x30, 0x13, 0x06, 0x07, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01, 0x06,
    0x08, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x03, 0x01, 0x07, 0x03, 0x42, 0x00, 0x04};
constexpr std::size_t keySize = keyOnCurve.size() + 64;
constexpr std::uint64_t howManyCodes = 1000000;
constexpr int numberOfDigits = 6;

template <typename Value> QByteArrayView view(const Value& value)
{
    return {value.data(), static_cast<qsizetype>(value.size())};
}

LinkDigest digestIn(const QByteArray& bytes)
{
    LinkDigest digest{};
    std::copy_n(bytes.begin(), std::min<qsizetype>(bytes.size(), digest.size()), digest.begin());
    return digest;
}

} // namespace

LinkDigest sha256(ByteView bytes)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(view(bytes));
    return digestIn(hash.result());
}

std::string hexadecimal(const LinkDigest& digest)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(digest.data()), digest.size())
        .toHex()
        .toStdString();
}

LinkDigest makeNonce()
{
    LinkDigest nonce{};
    // From the kernel, and never in vain.
    ::arc4random_buf(nonce.data(), nonce.size());
    return nonce;
}

std::optional<LinkDigest> fingerprint(const QSslCertificate& certificate)
{
    // Not by QSslCertificate::publicKey: it reads through null when it cannot decode the key.
    const QByteArray der = certificate.toDer();
    const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
    const std::unique_ptr<X509, decltype(&X509_free)> decoded(
        d2i_X509(nullptr, &bytes, static_cast<long>(der.size())), X509_free);
    const X509_PUBKEY* const stored = decoded ? X509_get_X509_PUBKEY(decoded.get()) : nullptr;
    if (!stored || i2d_X509_PUBKEY(stored, nullptr) != static_cast<int>(keySize))
        return std::nullopt;
    std::array<std::uint8_t, keySize> key{};
    std::uint8_t* end = key.data();
    i2d_X509_PUBKEY(stored, &end);
    if (!std::equal(keyOnCurve.begin(), keyOnCurve.end(), key.begin()))
        return std::nullopt;
    return sha256(key);
}

LinkDigest commitmentTo(const LinkDigest& nonce)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(view(commitmentPurpose));
    hash.addData(view(nonce));
    return digestIn(hash.result());
}

std::string pairingDigits(const PairingFacts& facts)
{
    QMessageAuthenticationCode code(QCryptographicHash::Sha256);
    code.setKey(view(facts.deviceNonce).toByteArray() + view(facts.hostNonce).toByteArray());
    code.addData(view(digitsPurpose).toByteArray());
    for (const LinkDigest& key : {facts.hostKey, facts.deviceKey})
        code.addData(view(key).toByteArray());
    code.addData(view(facts.agreement).toByteArray());
    const QByteArray result = code.result();
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number = number << 8U | static_cast<std::uint8_t>(result[static_cast<qsizetype>(i)]);
    const std::string digits = std::to_string(number % howManyCodes);
    return std::string(numberOfDigits - digits.size(), '0') + digits;
}

} // namespace farview
