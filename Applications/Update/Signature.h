#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace farview
{

/// A pair of Ed25519 keys, and signing with it. The tool of the person who releases.
class SigningKey
{
public:
    /// A new pair.
    static std::optional<SigningKey> generated();
    /// The pair that this text stands for; nothing when it is none.
    static std::optional<SigningKey> fromText(std::string_view text);

    SigningKey(SigningKey&&) noexcept = default;
    SigningKey& operator=(SigningKey&&) noexcept = default;
    /// Leaves nothing of the secret in memory.
    ~SigningKey();

    /// The secret, to be kept: 32 bytes in Base64.
    std::string text() const;
    /// What others verify with: 32 bytes in Base64.
    std::string publicKey() const;
    /// 64 bytes in Base64.
    std::string signatureOf(std::string_view bytes) const;

private:
    explicit SigningKey(std::string seed) : mSeed(std::move(seed)) {}

    std::string mSeed;
};

/// Whether that is a key to verify with.
bool isPublicKey(std::string_view publicKey);

/// Whether the bytes were signed with the secret of that public key. Both are Base64; what is no
/// key or no signature verifies nothing.
bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey);

} // namespace farview
