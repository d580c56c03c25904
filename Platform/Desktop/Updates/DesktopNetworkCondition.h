#pragma once

#include "Platform/NetworkCondition.h"

#include <QObject>
#include <QString>

namespace farview
{

/// Where this computer tells about its network.
struct NetworkPlaces {
    /// Empty: the system's own bus.
    QString busAddress = {};
    QString routes = QStringLiteral("/proc/net/route");
    QString routes6 = QStringLiteral("/proc/net/ipv6_route");
};

/// The kernel tells whether there is a road out, NetworkManager, where it runs, what it costs and
/// whether it leads anywhere. Where nothing tells, a road out counts as free. Main thread only.
class DesktopNetworkCondition final : public QObject, public NetworkCondition
{
    Q_OBJECT

public:
    explicit DesktopNetworkCondition(NetworkPlaces places);

    void ask(std::weak_ptr<void> target, Answer then) override;

private:
    NetworkPlaces mPlaces;
};

} // namespace farview
