#include "Applications/ScreenCapture/NetworkDeviceLink.h"

#include <utility>

namespace farview
{

void NetworkDeviceLink::setDelegate(std::weak_ptr<DeviceLinkDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void NetworkDeviceLink::connectTo(const std::vector<Endpoint>& endpoints,
                                  const LinkOptions& options)
{
    leave(LinkGoodbyeCode::byUser);
    mOptions = options;
    mConnector = std::make_unique<HostConnector>(ConnectorTimes{});
    const auto connected = [this](std::unique_ptr<QSslSocket> socket) {
        mConnector.reset();
        greet(std::move(socket));
    };
    const auto failed = [this](const std::string& why) {
        mConnector.reset();
        fail({LinkEndReason::lost, why});
    };
    mConnector->start(linkCandidates(endpoints, usableInterfaces()), connected, failed);
}

/// A key that could not be used is tried again: the user may have mended it.
void NetworkDeviceLink::greet(std::unique_ptr<QSslSocket> socket)
{
    if (!mKey) {
        auto result = ownKey(mKeyPath);
        mKey = std::move(result.key);
        if (!mKey)
            return fail({LinkEndReason::noOwnKey, result.trouble});
    }
    mConnection = LinkConnection::make(LinkSide::host, std::move(socket), weak_from_this(), *mKey,
                                       ownGreeting(), LinkTimes{});
}

void NetworkDeviceLink::fail(const LinkEnd& end)
{
    if (const auto delegate = mDelegate.lock())
        delegate->deviceDidNotConnect(end);
}

void NetworkDeviceLink::confirm()
{
    if (mConnection)
        mConnection->confirm();
}

void NetworkDeviceLink::setOptions(const LinkOptions& options)
{
    mOptions = options;
    if (mConnection)
        mConnection->send(options);
}

bool NetworkDeviceLink::hasFeature(const std::string& feature) const
{
    return mConnection && mConnection->isOpen() && mConnection->agreement().has(feature);
}

void NetworkDeviceLink::send(const LinkFrame& frame)
{
    if (mConnection)
        mConnection->send(frame);
}

bool NetworkDeviceLink::hasRoom() const { return mConnection && mConnection->hasRoom(); }

void NetworkDeviceLink::disconnect(LinkGoodbyeCode code, std::function<void()> then)
{
    leave(code);
    if (then)
        mWhenNothingIsLeft = std::move(then);
    QTimer::singleShot(0, [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->callWhenNothingIsLeft();
    });
}

void NetworkDeviceLink::leave(LinkGoodbyeCode code)
{
    mConnector.reset();
    if (!mConnection)
        return;
    mConnection->close({code, ""});
    mLeft.push_back(std::move(mConnection));
    mConnection.reset();
}

LinkTrust NetworkDeviceLink::linkDidProveKey(LinkConnection& connection)
{
    const auto delegate = mDelegate.lock();
    if (!delegate || mConnection.get() != &connection)
        return LinkGoodbye{};
    return delegate->deviceDidProveKey(connection.peerKey());
}

std::optional<LinkGoodbye> NetworkDeviceLink::linkMayNotAskUser(LinkConnection& connection)
{
    const auto delegate = mDelegate.lock();
    if (!delegate || mConnection.get() != &connection)
        return LinkGoodbye{};
    return delegate->mayNotAskUser();
}

void NetworkDeviceLink::linkAsksUser(LinkConnection& connection)
{
    const auto delegate = mDelegate.lock();
    if (delegate && mConnection.get() == &connection)
        delegate->deviceShowsDigits(connection.digits());
}

void NetworkDeviceLink::linkDidOpen(LinkConnection& connection)
{
    if (mConnection.get() != &connection)
        return;
    connection.send(mOptions);
    if (const auto delegate = mDelegate.lock())
        delegate->deviceDidConnect({connection.peerAddress(), connection.peerKey(),
                                    connection.cipher(), connection.wasPaired()});
}

void NetworkDeviceLink::linkDidReceive(LinkConnection& connection, const LinkFrame& frame)
{
    const auto delegate = mDelegate.lock();
    if (delegate && mConnection.get() == &connection)
        delegate->deviceDidSend(frame);
}

void NetworkDeviceLink::linkHasRoom(LinkConnection& connection)
{
    const auto delegate = mDelegate.lock();
    if (delegate && mConnection.get() == &connection)
        delegate->deviceHasRoom();
}

void NetworkDeviceLink::linkDidEnd(LinkConnection& connection, const LinkEnd& end)
{
    if (mConnection.get() != &connection) {
        forgetLeft(connection);
        return;
    }
    mConnection.reset();
    const auto delegate = mDelegate.lock();
    if (delegate && connection.wasOpened())
        delegate->deviceDidDisconnect(end);
    else if (delegate)
        delegate->deviceDidNotConnect(end);
}

void NetworkDeviceLink::forgetLeft(const LinkConnection& connection)
{
    std::erase_if(mLeft, [&](const auto& left) { return left.get() == &connection; });
    callWhenNothingIsLeft();
}

void NetworkDeviceLink::callWhenNothingIsLeft()
{
    if (!mLeft.empty())
        return;
    if (const auto action = std::exchange(mWhenNothingIsLeft, nullptr))
        action();
}

} // namespace farview
