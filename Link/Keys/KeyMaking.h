#pragma once

#include <string>

namespace farview
{

/// A new key on P-256 and a certificate that it signed itself, both as PEM; empty when that fails.
/// The certificate tells nothing of its owner and does not expire: keys are compared, not dates.
std::string makeKeyAndCertificate();

/// Whether the text holds a key on P-256 and a certificate of that very key.
bool isKeyAndCertificate(const std::string& pem);

} // namespace farview
