#pragma once

#include "Link/Keys/OwnKey.h"

#include <QSslConfiguration>

class QSslSocket;

namespace farview
{

/// How a side encrypts: TLS 1.3, its own key, nothing resumed. The name of the protocol (ALPN)
/// stands for `agreement`, the bytes of greeting and answer as this side knows them: sides that
/// know different ones do not come together.
QSslConfiguration encryptionSettings(const OwnKey& key, ByteView agreement);

/// Whose key the peer proved to have, once the socket is encrypted. Nothing when it did not, or
/// speaks otherwise than `encryptionSettings` say.
std::optional<LinkDigest> provedKey(const QSslSocket& socket, ByteView agreement);

} // namespace farview
