#include "Link/LinkListener.h"

namespace farview
{

std::unique_ptr<QSslSocket> LinkListener::next()
{
    std::unique_ptr<QSslSocket> socket(static_cast<QSslSocket*>(nextPendingConnection()));
    if (socket)
        socket->setParent(nullptr);
    return socket;
}

void LinkListener::incomingConnection(qintptr descriptor)
{
    auto socket = std::make_unique<QSslSocket>();
    if (socket->setSocketDescriptor(descriptor))
        addPendingConnection(socket.release());
}

} // namespace farview
