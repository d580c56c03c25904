#include "Tests/Desktop/DeadlyXServer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/randr.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <set>
#include <stdexcept>
#include <utility>

namespace
{

// Requests of the core and of RandR that change something.
const std::set<int> changingRequests = {XCB_CHANGE_PROPERTY, XCB_DELETE_PROPERTY,
                                        XCB_SET_SELECTION_OWNER, XCB_GRAB_SERVER,
                                        XCB_UNGRAB_SERVER};
const std::set<int> changingRandrRequests = {7, 16, 17, 18, 19, 21, 29, 30, 43, 44};

std::string socketOf(const std::string& display) { return "/tmp/.X11-unix/X" + display.substr(1); }

std::uint32_t number(const std::string& bytes, std::size_t place)
{
    std::uint16_t value = 0;
    std::memcpy(&value, bytes.data() + place, sizeof value);
    return value;
}

std::size_t padded(std::size_t size) { return (size + 3) / 4 * 4; }

/// False at the end.
bool receive(int socket, std::string& bytes)
{
    std::array<char, 65536> room;
    const auto count = ::recv(socket, room.data(), room.size(), 0);
    if (count > 0)
        bytes.append(room.data(), static_cast<std::size_t>(count));
    return count > 0;
}

void sendAll(int socket, const std::string& bytes)
{
    [[maybe_unused]] const auto count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

sockaddr_un address(const std::string& path, bool isFile)
{
    sockaddr_un found{};
    found.sun_family = AF_UNIX;
    std::memcpy(found.sun_path + (isFile ? 0 : 1), path.data(), path.size());
    return found;
}

} // namespace

struct DeadlyXServer::Client {
    int client = -1;
    int server = -1;
    bool isVictim = false;
    bool isIntroduced = false;
    std::string requests; ///< received and not passed on yet

    ~Client()
    {
        ::close(client);
        ::close(server);
    }
    /// The length of the next request; 0 when there is no whole one.
    std::size_t nextLength() const
    {
        const std::size_t least = isIntroduced ? 4 : 12;
        if (requests.size() < least)
            return 0;
        const std::size_t length =
            isIntroduced ? std::size_t{4} * number(requests, 2)
                         : 12 + padded(number(requests, 6)) + padded(number(requests, 8));
        return requests.size() < length ? 0 : length;
    }
};

DeadlyXServer::DeadlyXServer(const std::string& realDisplay) : mRealSocket(socketOf(realDisplay))
{
    auto* connection = xcb_connect(realDisplay.c_str(), nullptr);
    mRandr = xcb_get_extension_data(connection, &xcb_randr_id)->major_opcode;
    xcb_disconnect(connection);
    mListener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    for (int display = 20000 + ::getpid() % 10000;; ++display) {
        mDisplay = ":" + std::to_string(display);
        const auto name = socketOf(mDisplay);
        const auto at = address(name, false);
        const auto size = offsetof(sockaddr_un, sun_path) + 1 + name.size();
        if (::bind(mListener, reinterpret_cast<const sockaddr*>(&at), size) == 0)
            break;
        if (errno != EADDRINUSE)
            throw std::runtime_error("no socket for an X server");
    }
    if (::listen(mListener, 8) != 0)
        throw std::runtime_error("no socket for an X server");
    mThread = std::thread([this] { serve(); });
}

DeadlyXServer::~DeadlyXServer()
{
    mIsEnding = true;
    mThread.join();
    ::close(mListener);
}

void DeadlyXServer::killAfter(int request, pid_t victim)
{
    mFatalRequest = request;
    mVictim = victim;
}

void DeadlyXServer::serve()
{
    while (!mIsEnding) {
        std::vector<pollfd> files{{mListener, POLLIN, 0}};
        for (const auto& client : mClients) {
            files.push_back({client->client, POLLIN, 0});
            files.push_back({client->server, POLLIN, 0});
        }
        ::poll(files.data(), files.size(), 20);
        std::erase_if(mClients, [&](auto& client) {
            const bool isGone = !pass(*client);
            mHasWatched = mHasWatched || (isGone && !client->isVictim);
            return isGone;
        });
        // Nobody is served before it is known whom to kill.
        if (files[0].revents != 0 && mVictim != 0)
            accept();
    }
}

void DeadlyXServer::accept()
{
    auto client = std::make_unique<Client>();
    client->client = ::accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
    client->server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ucred peer{};
    socklen_t size = sizeof peer;
    ::getsockopt(client->client, SOL_SOCKET, SO_PEERCRED, &peer, &size);
    client->isVictim = peer.pid == mVictim;
    const auto real = address(mRealSocket, true);
    if (::connect(client->server, reinterpret_cast<const sockaddr*>(&real), sizeof real) == 0)
        mClients.push_back(std::move(client));
}

bool DeadlyXServer::pass(Client& client)
{
    std::array<pollfd, 2> files{{{client.client, POLLIN, 0}, {client.server, POLLIN, 0}}};
    ::poll(files.data(), files.size(), 0);
    if (files[1].revents != 0) {
        std::string answer;
        if (!receive(client.server, answer))
            return false;
        sendAll(client.client, answer);
    }
    return files[0].revents == 0 ||
           (receive(client.client, client.requests) && passRequests(client));
}

/// False when the client is dead.
bool DeadlyXServer::passRequests(Client& client)
{
    while (const auto length = client.nextLength()) {
        const auto request = client.requests.substr(0, length);
        client.requests.erase(0, length);
        sendAll(client.server, request);
        const int operation = static_cast<unsigned char>(request[0]);
        const bool isChange = operation == mRandr ? changingRandrRequests.contains(request[1])
                                                  : changingRequests.contains(operation);
        if (std::exchange(client.isIntroduced, true) && client.isVictim && isChange &&
            ++mChanges == mFatalRequest) {
            ::kill(mVictim, SIGKILL);
            mHasKilled = true;
            return false;
        }
    }
    return true;
}
