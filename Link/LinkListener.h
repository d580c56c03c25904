#pragma once

#include <QSslSocket>
#include <QTcpServer>

#include <memory>

namespace farview
{

/// Listens for hosts. Their sockets begin unencrypted. Main thread only.
class LinkListener final : public QTcpServer
{
public:
    /// The next connection that waits; null when none does.
    std::unique_ptr<QSslSocket> next();

protected:
    void incomingConnection(qintptr descriptor) override;
};

} // namespace farview
