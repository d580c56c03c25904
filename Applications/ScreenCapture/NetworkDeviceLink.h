#pragma once

#include "Applications/ScreenCapture/DeviceLink.h"
#include "Link/HostConnector.h"
#include "Link/LinkConnection.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// The connection over the network. Made with `std::make_shared`. Main thread only.
class NetworkDeviceLink final : public DeviceLink,
                                public LinkConnectionDelegate,
                                public std::enable_shared_from_this<NetworkDeviceLink>
{
public:
    /// `keyPath` is where this side's own key is kept.
    explicit NetworkDeviceLink(std::string keyPath) : mKeyPath(std::move(keyPath)) {}

    void setDelegate(std::weak_ptr<DeviceLinkDelegate> delegate) override;
    void connectTo(const std::vector<Endpoint>& endpoints, const LinkOptions& options) override;
    void confirm() override;
    void setOptions(const LinkOptions& options) override;
    bool hasFeature(const std::string& feature) const override;
    void send(const LinkFrame& frame) override;
    bool hasRoom() const override;
    void disconnect(LinkGoodbyeCode code, std::function<void()> then) override;

    LinkTrust linkDidProveKey(LinkConnection& connection) override;
    std::optional<LinkGoodbye> linkMayNotAskUser(LinkConnection& connection) override;
    void linkAsksUser(LinkConnection& connection) override;
    void linkDidOpen(LinkConnection& connection) override;
    void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) override;
    void linkHasRoom(LinkConnection& connection) override;
    void linkDidEnd(LinkConnection& connection, const LinkEnd& end) override;

private:
    void greet(std::unique_ptr<QSslSocket> socket);
    void fail(const LinkEnd& end);
    void leave(LinkGoodbyeCode code);
    void forgetLeft(const LinkConnection& connection);
    void callWhenNothingIsLeft();

    std::weak_ptr<DeviceLinkDelegate> mDelegate;
    std::unique_ptr<HostConnector> mConnector;
    std::shared_ptr<LinkConnection> mConnection;
    /// Connections that are saying goodbye.
    std::vector<std::shared_ptr<LinkConnection>> mLeft;
    std::function<void()> mWhenNothingIsLeft;
    std::string mKeyPath;
    std::optional<OwnKey> mKey;
    LinkOptions mOptions;
};

} // namespace farview
