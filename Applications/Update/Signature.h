#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace farview
{

/// Makes signatures with a pair of Ed25519 keys. For whoever makes a release.
class SigningKey
{
public:
    /// A new pair.
    static std::optional<SigningKey> generated();
    /// The pair of that secret key, in Base64; nothing when the text is no key.
    static std::optional<SigningKey> fromText(std::string_view text);

    SigningKey(SigningKey&&) noexcept = default;
    SigningKey& operator=(SigningKey&&) noexcept = default;
    /// Leaves nothing of the secret in memory.
    ~SigningKey();

    /// The secret key: 32 bytes in Base64.
    std::string text() const;
    /// The public key, which others verify with: 32 bytes in Base64.
    std::string publicKey() const;
    /// The signature: 64 bytes in Base64.
    std::string signatureOf(std::string_view bytes) const;
    /// The feed, with its signature as an XML comment in the last line. More than the feed's bytes
    /// is signed, so that no other file's signature passes for a feed's.
    std::string signedFeed(std::string_view feed) const;

private:
    explicit SigningKey(std::string seed) : mSeed(std::move(seed)) {}

    std::string mSeed;
};

/// Whether that is a key to verify with.
bool isPublicKey(std::string_view publicKey);

/// Whether the bytes were signed with the secret key that belongs to the public one. Both texts are
/// Base64; false when one of them is no key or no signature.
bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey);

/// The feed before its last line, when that line is its signature with the secret key that belongs
/// to the public one; else nothing. Only the last line is read before that is known.
std::optional<std::string_view> verifiedFeed(std::string_view bytes, std::string_view publicKey);

} // namespace farview
