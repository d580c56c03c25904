#pragma once

#include "Link/HostConnector.h"
#include "Link/LinkConnection.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// What asking one device came to.
struct DeviceAnswer {
    enum class Kind {
        ready,       ///< it would serve this computer
        refuses,     ///< it would not: see the code and its words
        tooOld,      ///< its version of the link cannot be spoken here: see its words
        noAddress,   ///< nothing to connect to is known of it
        portClosed,  ///< nothing listens on the port
        unreachable, ///< the network leads nowhere
        noAnswer,    ///< nobody answered in time
        silent,      ///< it took the connection and did not answer the greeting
        strange,     ///< its answer is none of a device
    };

    Kind kind = Kind::noAddress;
    LinkRefusalCode code = LinkRefusalCode::byUser; ///< of a refusal
    std::string words{};                            ///< of a refusal, foreign
};

struct DeviceProbeTimes {
    std::chrono::milliseconds connect{2000};
    std::chrono::milliseconds greeting{2000};
};

/// Asks a device whether it would serve this computer, without connecting as a user would: the
/// device never counts as in use for it. Main thread only; its end breaks the question off.
class DeviceProbe final : public LinkConnectionDelegate,
                          public std::enable_shared_from_this<DeviceProbe>
{
public:
    using Answered = std::function<void(const DeviceAnswer& answer)>;

    explicit DeviceProbe(DeviceProbeTimes times) : mTimes(times) {}

    /// Begins, once. `answered` is called once, from the event loop, never inside this call.
    void ask(const std::vector<Endpoint>& endpoints, Answered answered);

    LinkTrust linkDidProveKey(LinkConnection& connection) override;
    void linkDidOpen(LinkConnection& connection) override;
    void linkDidReceive(LinkConnection& connection, const LinkFrame& frame) override;
    void linkDidEnd(LinkConnection& connection, const LinkEnd& end) override;

private:
    void greet(std::unique_ptr<QSslSocket> socket);
    void tell(const DeviceAnswer& answer);

    DeviceProbeTimes mTimes;
    std::unique_ptr<HostConnector> mConnector;
    std::shared_ptr<LinkConnection> mConnection;
    Answered mAnswered;
};

} // namespace farview
