#pragma once

#include "Link/LinkEnd.h"
#include "Link/Wire/LinkFrame.h"
#include "Platform/NetService.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// Hears of the server's connection. Called on a later turn, never inside a call to the link. What
/// was replaced or ended by the server itself is not reported.
class DeviceLinkDelegate
{
public:
    virtual ~DeviceLinkDelegate() = default;
    /// The device accepted; `address` is the numeric address at which it was reached.
    virtual void deviceDidConnect(const std::string& address) = 0;
    /// The device could not be reached or refused. `why` is a short printable text.
    virtual void deviceDidNotConnect(const std::string& why) = 0;
    /// The device sent what only a device with a picture sends.
    virtual void deviceDidSend(const LinkFrame& frame) = 0;
    /// The connection takes more of a picture again, after it did not.
    virtual void deviceHasRoom() = 0;
    /// The connection ended, and not by the server.
    virtual void deviceDidDisconnect(const LinkEnd& end) = 0;
};

/// The server's connection to one device at a time.
class DeviceLink
{
public:
    virtual ~DeviceLink() = default;

    virtual void setDelegate(std::weak_ptr<DeviceLinkDelegate> delegate) = 0;
    /// Connects to the device at one of these endpoints, and leaves the one before with a goodbye.
    /// Without options the device gets none before `setOptions` is called.
    virtual void connectTo(const std::vector<Endpoint>& endpoints,
                           const std::optional<LinkOptions>& options) = 0;
    /// Sends the options while connected; ignored otherwise.
    virtual void setOptions(const LinkOptions& options) = 0;
    /// Whether the device that is connected agreed to that.
    virtual bool hasFeature(const std::string& feature) const = 0;
    /// Sends a part of a picture while connected; ignored otherwise.
    virtual void send(LinkFrame frame) = 0;
    /// Whether a connection takes more of a picture now.
    virtual bool hasRoom() const = 0;
    /// Ends the attempt or the connection with a goodbye. `then` (may be empty) is called on a
    /// later turn, within a second, when everything is closed.
    virtual void disconnect(LinkGoodbyeCode code, std::function<void()> then) = 0;
};

} // namespace farview
