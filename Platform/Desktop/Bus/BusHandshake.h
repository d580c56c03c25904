#pragma once

#include "Platform/Posix/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// What a message bus says to a new client.
enum class BusAnswer {
    answers,
    noAddress, ///< nobody says where the bus is
    refused,   ///< nothing listens there
    silent,    ///< something listens and says nothing
    rejects,   ///< it does not let this user in
};

/// Begins to talk to the bus at that address ("unix:path=/run/bus;...": the first that listens) and
/// hangs up again, in at most `limit`. A bus that stopped would hold a library's call for 25
/// seconds. Only local sockets are tried; an address of another kind counts as answering.
BusAnswer checkBus(const std::string& address, std::chrono::milliseconds limit);

/// The same for who must not wait: connects at once and answers once, on a later turn of the loop
/// and at the latest after `limit`. Nothing is heard of it after its end, which must not come from
/// within `heard` (deleteLater may). Main thread only.
class BusCheck final : public QObject
{
public:
    using Heard = std::function<void(BusAnswer)>;

    BusCheck(const std::string& address, std::chrono::milliseconds limit, Heard heard);

private:
    void end(BusAnswer answer);

    FileDescriptor mSocket;
    std::unique_ptr<QSocketNotifier> mNotifier;
    QTimer mLimit;
    Heard mHeard;
};

} // namespace farview
