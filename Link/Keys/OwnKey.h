#pragma once

#include "Link/Wire/LinkFrame.h"

#include <QSslCertificate>
#include <QSslKey>

#include <optional>
#include <string>

namespace farview
{

/// This side's key, and a certificate that carries its public half.
struct OwnKey {
    QSslKey secret;
    QSslCertificate certificate;
    LinkDigest fingerprint{};
};

/// A key, or why there is none: an English text that says what to do.
struct OwnKeyResult {
    std::optional<OwnKey> key;
    std::string trouble;
};

/// Where the key of a program is kept that has that preferences domain: beside its settings.
std::string ownKeyPath(const std::string& domain);

/// The key in that file. A file that others may read or might have written, or that holds no key,
/// is not used. Neither key nor trouble when there is no such file.
OwnKeyResult readOwnKey(const std::string& path);

/// The same, but a file that is missing is made, for its owner alone. No other file is ever
/// replaced: everybody who trusts the key in it would have to be asked again.
OwnKeyResult ownKey(const std::string& path);

/// A key that is kept nowhere; for tests and benchmarks.
OwnKey makeOwnKey();

} // namespace farview
