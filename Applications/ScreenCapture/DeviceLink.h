#pragma once

#include "Link/LinkConnection.h"
#include "Platform/NetService.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace farview
{

/// What is known of a device once it is connected.
struct ConnectedDevice {
    std::string address;    ///< numeric, at which it was reached
    std::string key;        ///< that it proved to have
    std::string cipher;     ///< the algorithms, as TLS names them
    bool wasPaired = false; ///< its user and ours have just confirmed each other
};

/// Hears of the server's connection. Called on a later turn, never inside a call to the link. What
/// was replaced or ended by the server itself is not reported.
class DeviceLinkDelegate
{
public:
    virtual ~DeviceLinkDelegate() = default;
    /// The device has proved that it has this key: whether that is known, or why it is left.
    virtual LinkTrust deviceDidProveKey(const std::string& key) = 0;
    /// Device or server do not know the other: nothing when the user may be asked, else the
    /// goodbye.
    virtual std::optional<LinkGoodbye> mayNotAskUser() = 0;
    /// The device shows these digits now: to be compared, and then `confirm` or `disconnect`.
    virtual void deviceShowsDigits(const std::string& digits) = 0;
    /// Each knows the other.
    virtual void deviceDidConnect(const ConnectedDevice& device) = 0;
    /// The device could not be reached, refused, or was left before it was known.
    virtual void deviceDidNotConnect(const LinkEnd& end) = 0;
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
    virtual void connectTo(const std::vector<Endpoint>& endpoints, const LinkOptions& options) = 0;
    /// The user has compared the digits and trusts the device; ignored at any other time.
    virtual void confirm() = 0;
    /// Sends the options while connected; ignored otherwise.
    virtual void setOptions(const LinkOptions& options) = 0;
    /// Whether the device that is connected agreed to that.
    virtual bool hasFeature(const std::string& feature) const = 0;
    /// Sends a part of a picture while connected; ignored otherwise.
    virtual void send(const LinkFrame& frame) = 0;
    /// Whether a connection takes more of a picture now.
    virtual bool hasRoom() const = 0;
    /// Ends the attempt or the connection with a goodbye. `then` (may be empty) is called on a
    /// later turn, within a second, when everything is closed.
    virtual void disconnect(LinkGoodbyeCode code, std::function<void()> then) = 0;
};

/// Makes a connection of its own for each device that is used at once.
using DeviceLinks = std::function<std::shared_ptr<DeviceLink>()>;

} // namespace farview
