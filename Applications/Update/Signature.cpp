#include "Applications/Update/Signature.h"

#include "Platform/Posix/PropertyLists/PropertyListScalars.h"

#include <sodium.h>

namespace farview
{
namespace
{

using Bytes = std::string;

const unsigned char* unsignedBytes(std::string_view bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

unsigned char* unsignedBytes(Bytes& bytes)
{
    return reinterpret_cast<unsigned char*>(bytes.data());
}

constexpr std::string_view beforeFeedSignature = "<!-- farview:signature ";
constexpr std::string_view afterFeedSignature = " -->\n";
constexpr std::size_t signatureLength = 88; ///< in Base64
constexpr auto feedSignatureLine =
    beforeFeedSignature.size() + signatureLength + afterFeedSignature.size();

Bytes signedBytesOf(std::string_view feed) { return "farview:feed\n" + Bytes(feed); }

/// The bytes of a Base64 text; empty when there are not exactly that many.
Bytes decoded(std::string_view text, std::size_t size)
{
    const auto data = dataFromBase64(text);
    return data && data->size() == size ? data->text() : Bytes();
}

std::string encoded(std::string_view bytes) { return base64FromData(Data::fromText(bytes)); }

struct KeyPair {
    Bytes publicKey = Bytes(crypto_sign_PUBLICKEYBYTES, '\0');
    Bytes secretKey = Bytes(crypto_sign_SECRETKEYBYTES, '\0');

    explicit KeyPair(const Bytes& seed)
    {
        crypto_sign_seed_keypair(unsignedBytes(publicKey), unsignedBytes(secretKey),
                                 unsignedBytes(std::string_view(seed)));
    }
    ~KeyPair() { sodium_memzero(secretKey.data(), secretKey.size()); }
    KeyPair(const KeyPair&) = delete;
    KeyPair& operator=(const KeyPair&) = delete;
};

} // namespace

std::optional<SigningKey> SigningKey::generated()
{
    if (sodium_init() < 0)
        return std::nullopt;
    Bytes seed(crypto_sign_SEEDBYTES, '\0');
    randombytes_buf(seed.data(), seed.size());
    return SigningKey(std::move(seed));
}

std::optional<SigningKey> SigningKey::fromText(std::string_view text)
{
    Bytes seed = decoded(text, crypto_sign_SEEDBYTES);
    if (sodium_init() < 0 || seed.empty())
        return std::nullopt;
    return SigningKey(std::move(seed));
}

SigningKey::~SigningKey() { sodium_memzero(mSeed.data(), mSeed.size()); }

std::string SigningKey::text() const { return encoded(mSeed); }

std::string SigningKey::publicKey() const { return encoded(KeyPair(mSeed).publicKey); }

std::string SigningKey::signatureOf(std::string_view bytes) const
{
    const KeyPair pair(mSeed);
    Bytes signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(unsignedBytes(signature), nullptr, unsignedBytes(bytes), bytes.size(),
                         unsignedBytes(std::string_view(pair.secretKey)));
    return encoded(signature);
}

std::string SigningKey::signedFeed(std::string_view feed) const
{
    return Bytes(feed)
        .append(beforeFeedSignature)
        .append(signatureOf(signedBytesOf(feed)))
        .append(afterFeedSignature);
}

bool isPublicKey(std::string_view publicKey)
{
    return !decoded(publicKey, crypto_sign_PUBLICKEYBYTES).empty();
}

bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey)
{
    const Bytes key = decoded(publicKey, crypto_sign_PUBLICKEYBYTES);
    const Bytes mark = decoded(signature, crypto_sign_BYTES);
    if (sodium_init() < 0 || key.empty() || mark.empty())
        return false;
    return crypto_sign_verify_detached(unsignedBytes(std::string_view(mark)), unsignedBytes(bytes),
                                       bytes.size(), unsignedBytes(std::string_view(key))) == 0;
}

std::optional<std::string_view> verifiedFeed(std::string_view bytes, std::string_view publicKey)
{
    if (bytes.size() < feedSignatureLine)
        return std::nullopt;
    const auto feed = bytes.substr(0, bytes.size() - feedSignatureLine);
    const auto line = bytes.substr(feed.size());
    if (!line.starts_with(beforeFeedSignature) || !line.ends_with(afterFeedSignature))
        return std::nullopt;
    const auto signature = line.substr(beforeFeedSignature.size(), signatureLength);
    return isSigned(signedBytesOf(feed), signature, publicKey) ? std::optional(feed) : std::nullopt;
}

} // namespace farview
