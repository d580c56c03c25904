#include "Link/Keys/PairingProof.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <QSslCertificate>
#include <QSslKey>

#include <algorithm>
#include <string_view>

namespace farview
{

namespace
{

constexpr std::string_view commitmentPurpose = "farview commit 1";
constexpr std::string_view digitsPurpose = "farview code 1";
constexpr int curveBits = 256;
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
    QRandomGenerator::system()->generate(nonce.begin(), nonce.end());
    return nonce;
}

std::optional<LinkDigest> fingerprint(const QSslCertificate& certificate)
{
    const QSslKey key = certificate.publicKey();
    if (key.isNull() || key.algorithm() != QSsl::Ec || key.length() != curveBits)
        return std::nullopt;
    return digestIn(QCryptographicHash::hash(key.toDer(), QCryptographicHash::Sha256));
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
