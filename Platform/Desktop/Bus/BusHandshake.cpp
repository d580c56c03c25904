#include "Platform/Desktop/Bus/BusHandshake.h"

#include "Platform/Posix/FileDescriptor.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace farview
{
namespace
{

using Clock = std::chrono::steady_clock;

struct SocketName {
    sockaddr_un address{};
    socklen_t length = 0;
};

std::optional<SocketName> nameFrom(const QByteArray& path, bool isAbstract)
{
    SocketName name;
    name.address.sun_family = AF_UNIX;
    const auto size = static_cast<std::size_t>(path.size()) + 1;
    if (path.isEmpty() || size > sizeof name.address.sun_path)
        return std::nullopt;
    // An abstract name begins with a NUL, a path ends with one.
    std::memcpy(name.address.sun_path + (isAbstract ? 1 : 0), path.constData(), size - 1);
    name.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + size);
    return name;
}

/// From one address: "unix:path=/run/bus,guid=12"; values are percent-encoded.
std::optional<SocketName> socketNameIn(const QByteArray& address)
{
    if (!address.startsWith("unix:"))
        return std::nullopt;
    for (const QByteArray& pair : address.mid(5).split(',')) {
        const auto equals = pair.indexOf('=');
        const QByteArray key = pair.left(equals);
        if (key == "path" || key == "abstract")
            return nameFrom(QByteArray::fromPercentEncoding(pair.mid(equals + 1)),
                            key == "abstract");
    }
    return std::nullopt;
}

/// Waits for that event on the socket until then.
bool becomesReady(int socket, short event, Clock::time_point deadline)
{
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd waiting{socket, event, 0};
        const int count = ::poll(&waiting, 1, std::max(0, static_cast<int>(left.count())));
        if (count >= 0 || errno != EINTR)
            return count == 1;
    }
}

FileDescriptor connectedSocket(const SocketName& name)
{
    FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto* address = reinterpret_cast<const sockaddr*>(&name.address);
    if (!descriptor.isOpen() || ::connect(descriptor.get(), address, name.length) != 0)
        return {};
    return descriptor;
}

/// The beginning of each talk with a bus: a NUL, and who we are.
QByteArray opening()
{
    return QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(::geteuid()).toHex() +
           "\r\n";
}

bool sendOpening(int socket)
{
    const QByteArray words = opening();
    return ::send(socket, words.constData(), static_cast<std::size_t>(words.size()),
                  MSG_NOSIGNAL) == words.size();
}

/// A socket on which the talk was opened; without one, what that means.
struct Opened {
    FileDescriptor socket;
    BusAnswer failure;
};

Opened openTalk(const std::string& address)
{
    if (address.empty())
        return {{}, BusAnswer::noAddress};
    bool isLocal = true;
    for (const QByteArray& each : QByteArray::fromStdString(address).split(';')) {
        const auto name = socketNameIn(each);
        isLocal = isLocal && (name || each.isEmpty());
        FileDescriptor socket = name ? connectedSocket(*name) : FileDescriptor();
        if (socket.isOpen() && !sendOpening(socket.get()))
            return {{}, BusAnswer::silent};
        if (socket.isOpen())
            return {std::move(socket), BusAnswer::silent};
    }
    return {{}, isLocal ? BusAnswer::refused : BusAnswer::answers};
}

BusAnswer answerAt(int socket)
{
    std::array<char, 64> answer{};
    const auto count = ::recv(socket, answer.data(), answer.size(), 0);
    if (count <= 0)
        return BusAnswer::silent;
    return QByteArray(answer.data(), count).startsWith("OK ") ? BusAnswer::answers
                                                              : BusAnswer::rejects;
}

} // namespace

BusAnswer checkBus(const std::string& address, std::chrono::milliseconds limit)
{
    const auto deadline = Clock::now() + limit;
    const Opened opened = openTalk(address);
    if (!opened.socket.isOpen() || !becomesReady(opened.socket.get(), POLLIN, deadline))
        return opened.failure;
    return answerAt(opened.socket.get());
}

BusCheck::BusCheck(const std::string& address, std::chrono::milliseconds limit, Heard heard)
    : mHeard(std::move(heard))
{
    Opened opened = openTalk(address);
    mSocket = std::move(opened.socket);
    mLimit.setSingleShot(true);
    connect(&mLimit, &QTimer::timeout, this, [this, failure = opened.failure] { end(failure); });
    if (!mSocket.isOpen()) {
        mLimit.start(0);
        return;
    }
    mLimit.start(limit);
    mNotifier = std::make_unique<QSocketNotifier>(mSocket.get(), QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this,
            [this] { end(answerAt(mSocket.get())); });
}

void BusCheck::end(BusAnswer answer)
{
    mLimit.stop();
    if (mNotifier)
        mNotifier->setEnabled(false);
    std::exchange(mHeard, nullptr)(answer);
}

} // namespace farview
