#pragma once

#include "Link/Wire/LinkFrame.h"

#include <string>

class QSslCertificate;

namespace farview
{

/// The SHA-256 of some bytes.
LinkDigest sha256(ByteView bytes);
/// 64 hexadecimal digits.
std::string hexadecimal(const LinkDigest& digest);
/// A number that nobody can guess, for one pairing.
LinkDigest makeNonce();

/// What a public key is known by: the SHA-256 of its SubjectPublicKeyInfo (DER), so that a renewed
/// certificate is the same peer. Nothing unless it is an elliptic-curve key on P-256.
std::optional<LinkDigest> fingerprint(const QSslCertificate& certificate);

/// What the device tells before it has seen the host's nonce: it cannot choose its own by it.
LinkDigest commitmentTo(const LinkDigest& nonce);

/// What both sides know once the nonces are told.
struct PairingFacts {
    LinkDigest deviceNonce{};
    LinkDigest hostNonce{};
    LinkDigest hostKey{};   ///< fingerprint
    LinkDigest deviceKey{}; ///< fingerprint
    Bytes agreement;        ///< greeting and answer, as they travelled

    bool operator==(const PairingFacts&) const = default;
};

/// The six digits that both users see. Whoever is in between, with keys of his own, has one guess
/// in a million.
std::string pairingDigits(const PairingFacts& facts);

} // namespace farview
