#include "Applications/Doctor/DeviceProbe.h"

#include "Link/LinkCandidates.h"

#include <utility>
#include <variant>

namespace farview
{
namespace
{

using Kind = DeviceAnswer::Kind;

Kind kindOf(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return Kind::portClosed;
    case QAbstractSocket::SocketTimeoutError:
        return Kind::noAnswer;
    default:
        return Kind::unreachable;
    }
}

/// Whether all that it misses is what no device offers, as a device of this version says it.
bool wouldServe(const std::string& refusal)
{
    const auto expected = agreementBetween(probingGreeting(), ownGreeting());
    return refusal == std::get<LinkRefusal>(expected).text;
}

DeviceAnswer answerFrom(const LinkEnd& end)
{
    if (end.refusal == LinkRefusalCode::noAgreement)
        return {wouldServe(end.text) ? Kind::ready : Kind::tooOld, *end.refusal, end.text};
    if (end.refusal)
        return {Kind::refuses, *end.refusal, end.text};
    const bool isSilent =
        end.reason == LinkEndReason::notAnswered || end.reason == LinkEndReason::lost;
    return {isSilent ? Kind::silent : Kind::strange, LinkRefusalCode::byUser, {}};
}

} // namespace

void DeviceProbe::ask(const std::vector<Endpoint>& endpoints, Answered answered)
{
    mAnswered = std::move(answered);
    auto candidates = linkCandidates(endpoints, usableInterfaces());
    const bool hasCandidates = !candidates.empty();
    mConnector = std::make_unique<HostConnector>(ConnectorTimes{mTimes.connect});
    mConnector->start(
        std::move(candidates), [this](auto socket) { greet(std::move(socket)); },
        [this, hasCandidates](const std::string&) {
            tell({hasCandidates ? kindOf(mConnector->error()) : Kind::noAddress});
        });
}

void DeviceProbe::greet(std::unique_ptr<QSslSocket> socket)
{
    LinkTimes times;
    times.greeting = mTimes.greeting;
    mConnection = LinkConnection::make(LinkSide::host, std::move(socket), weak_from_this(),
                                       OwnKey(), probingGreeting(), times);
}

/// A device that accepts a greeting which it cannot serve breaks the rules of the link.
LinkTrust DeviceProbe::linkDidProveKey(LinkConnection& /*connection*/)
{
    return LinkGoodbye{LinkGoodbyeCode::quitting, ""};
}

void DeviceProbe::linkDidOpen(LinkConnection& /*connection*/) {}

void DeviceProbe::linkDidReceive(LinkConnection& /*connection*/, const LinkFrame& /*frame*/) {}

void DeviceProbe::linkDidEnd(LinkConnection& /*connection*/, const LinkEnd& end)
{
    tell(answerFrom(end));
}

void DeviceProbe::tell(const DeviceAnswer& answer)
{
    if (const auto answered = std::exchange(mAnswered, nullptr))
        answered(answer);
}

} // namespace farview
