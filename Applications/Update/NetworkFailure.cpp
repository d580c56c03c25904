#include "Applications/Update/NetworkFailure.h"

#include <QNetworkInterface>

#include <algorithm>

namespace farview
{
namespace
{

bool leadsOut(const QNetworkInterface& interface)
{
    const auto flags = interface.flags();
    return flags.testFlag(QNetworkInterface::IsRunning) &&
           !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty();
}

bool hasNetwork()
{
    const auto interfaces = QNetworkInterface::allInterfaces();
    return std::any_of(interfaces.begin(), interfaces.end(), leadsOut);
}

UpdateReason reasonFor(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::SslHandshakeFailedError:
        return UpdateReason::certificate;
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::ProtocolUnknownError:
        return UpdateReason::insecureAddress;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return hasNetwork() ? UpdateReason::server : UpdateReason::noNetwork;
    case QNetworkReply::TimeoutError:
        return UpdateReason::stalled;
    default:
        return UpdateReason::server;
    }
}

} // namespace

UpdateFailure networkFailure(QNetworkReply::NetworkError error, const QString& text)
{
    return {reasonFor(error), text.toStdString()};
}

} // namespace farview
