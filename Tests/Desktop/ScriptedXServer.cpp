#include "Tests/Desktop/ScriptedXServer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <stdexcept>

using Bytes = ScriptedXServer::Bytes;

namespace
{

constexpr std::uint8_t kRandr = 140;
constexpr std::uint32_t kRoot = 77;
constexpr std::uint32_t kMode = 60;
// Outputs have the numbers from 20 on, crtcs those from 40 on.
constexpr std::uint32_t kFirstOutput = 20;
constexpr std::uint32_t kFirstCrtc = 40;

const std::map<std::uint8_t, std::string> coreNames = {
    {14, "GetGeometry"}, {36, "GrabServer"}, {43, "GetInputFocus"}, {98, "QueryExtension"}};
const std::map<std::uint8_t, std::string> randrNames = {
    {0, "QueryVersion"},      {6, "GetScreenSizeRange"},
    {7, "SetScreenSize"},     {9, "GetOutputInfo"},
    {20, "GetCrtcInfo"},      {21, "SetCrtcConfig"},
    {31, "GetOutputPrimary"}, {25, "GetScreenResourcesCurrent"}};

/// A reply with that many bytes behind its first 32.
Bytes reply(std::size_t more = 0)
{
    Bytes bytes(32 + more);
    bytes[0] = 1;
    ScriptedXServer::put(bytes, 4, static_cast<std::uint32_t>(more / 4), 4);
    return bytes;
}

/// Binds to the socket of a display, in the name space that leaves no file behind.
bool isBound(int listener, int display)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto name = "/tmp/.X11-unix/X" + std::to_string(display);
    std::memcpy(address.sun_path + 1, name.data(), name.size());
    const auto size = offsetof(sockaddr_un, sun_path) + 1 + name.size();
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) == 0)
        return true;
    if (errno != EADDRINUSE)
        throw std::runtime_error("no socket for an X server");
    return false;
}

bool readExactly(int client, Bytes& bytes, const std::atomic<bool>& isEnding)
{
    std::size_t done = 0;
    while (done < bytes.size() && !isEnding) {
        pollfd readable{client, POLLIN, 0};
        if (::poll(&readable, 1, 20) <= 0)
            continue;
        const auto count = ::recv(client, bytes.data() + done, bytes.size() - done, 0);
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return !isEnding;
}

void sendAll(int client, const Bytes& bytes)
{
    [[maybe_unused]] const auto count = ::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

} // namespace

std::uint32_t ScriptedXServer::number(const Bytes& bytes, std::size_t place, std::size_t size)
{
    std::uint32_t value = 0;
    if (place + size <= bytes.size())
        std::memcpy(&value, bytes.data() + place, size);
    return value;
}

void ScriptedXServer::put(Bytes& bytes, std::size_t place, std::uint32_t value, std::size_t size)
{
    std::memcpy(bytes.data() + place, &value, size);
}

ScriptedXServer::ScriptedXServer(std::vector<int> positions) : mPositions(std::move(positions))
{
    mListener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // Far above the numbers that real servers take.
    int number = 1000 + ::getpid() % 10000;
    while (!isBound(mListener, number))
        ++number;
    if (::listen(mListener, 8) != 0)
        throw std::runtime_error("no socket for an X server");
    mDisplay =
        std::make_unique<ScopedEnvironment>("DISPLAY", (":" + std::to_string(number)).c_str());
    mThread = std::thread([this] { serve(); });
}

ScriptedXServer::~ScriptedXServer()
{
    mIsEnding = true;
    mThread.join();
    ::close(mListener);
}

std::vector<std::string> ScriptedXServer::requests()
{
    const std::lock_guard lock(mMutex);
    return mRequests;
}

/// Success, version 11.0, and one screen without depths.
Bytes ScriptedXServer::decentSetup()
{
    Bytes bytes(8 + 32 + 40);
    bytes[0] = 1;
    put(bytes, 2, 11, 2);
    put(bytes, 6, (32 + 40) / 4, 2);
    put(bytes, 26, 0xFFFF, 2);
    bytes[28] = 1;
    put(bytes, 40, kRoot, 4);
    return bytes;
}

Bytes ScriptedXServer::refusal(const Request& request)
{
    Bytes bytes(32);
    bytes[1] = 2;
    put(bytes, 2, request.sequence, 2);
    return bytes;
}

void ScriptedXServer::serve()
{
    while (!mIsEnding) {
        pollfd waiting{mListener, POLLIN, 0};
        if (::poll(&waiting, 1, 20) <= 0)
            continue;
        const int client = ::accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
        serveOne(client);
        ::close(client);
    }
}

void ScriptedXServer::serveOne(int client)
{
    Bytes hello(12);
    if (!readExactly(client, hello, mIsEnding))
        return;
    const auto padded = [](std::uint32_t size) { return (size + 3) / 4 * 4; };
    Bytes authorization(padded(number(hello, 6, 2)) + padded(number(hello, 8, 2)));
    if (!readExactly(client, authorization, mIsEnding) || mSetup == hangUp())
        return;
    sendAll(client, mSetup);
    mSequence = 0;
    for (Bytes request(4); readExactly(client, request, mIsEnding); request.assign(4, 0)) {
        Bytes rest(std::max<std::size_t>(number(request, 2, 2), 1) * 4 - 4);
        if (!readExactly(client, rest, mIsEnding))
            return;
        request.insert(request.end(), rest.begin(), rest.end());
        if (!answer(client, request))
            return;
    }
}

void ScriptedXServer::setScript(Script script)
{
    const std::lock_guard lock(mMutex);
    mScript = std::move(script);
}

std::optional<Bytes> ScriptedXServer::scriptedAnswer(const Request& request, const Bytes& decent)
{
    const std::lock_guard lock(mMutex);
    mRequests.push_back(request.name);
    return mScript ? mScript(request, decent) : std::nullopt;
}

bool ScriptedXServer::answer(int client, const Bytes& request)
{
    const Request asked{nameOf(request), ++mSequence};
    Bytes decent = decentAnswer(asked.name, request);
    if (!decent.empty())
        put(decent, 2, asked.sequence, 2);
    const auto scripted = scriptedAnswer(asked, decent);
    if (scripted == hangUp())
        return false;
    sendAll(client, scripted.value_or(decent));
    return true;
}

std::string ScriptedXServer::nameOf(const Bytes& request) const
{
    const auto& names = request[0] == kRandr ? randrNames : coreNames;
    const auto found = names.find(request[0] == kRandr ? request[1] : request[0]);
    if (found == names.end())
        return "request " + std::to_string(request[0]) + " " + std::to_string(request[1]);
    std::string name = found->second;
    const auto add = [&](std::uint32_t value) { name += " " + std::to_string(value); };
    if (name == "SetCrtcConfig") {
        add(number(request, 4, 4) - kFirstCrtc);
        add(number(request, 16, 2));
        add(number(request, 18, 2));
    } else if (name == "SetScreenSize") {
        add(number(request, 8, 2));
        add(number(request, 10, 2));
    }
    return name;
}

Bytes ScriptedXServer::decentAnswer(const std::string& name, const Bytes& request)
{
    Bytes bytes = reply();
    if (name == "QueryExtension") {
        bytes[8] = 1;
        bytes[9] = kRandr;
    } else if (name == "QueryVersion") {
        put(bytes, 8, 1, 4);
        put(bytes, 12, 5, 4);
    } else if (name == "GetGeometry") {
        put(bytes, 16, 100, 2);
        put(bytes, 18, 50, 2);
    } else if (name == "GetScreenSizeRange") {
        put(bytes, 12, 1000, 2);
        put(bytes, 14, 1000, 2);
    } else if (name == "GetScreenResourcesCurrent") {
        return resources();
    } else if (name == "GetCrtcInfo") {
        return crtcInfo(number(request, 4, 4));
    } else if (name == "GetOutputInfo") {
        return outputInfo(number(request, 4, 4));
    } else if (name == "GrabServer" || name.starts_with("SetScreenSize")) {
        return {};
    }
    return bytes;
}

Bytes ScriptedXServer::resources() const
{
    const auto count = static_cast<std::uint32_t>(mPositions.size());
    Bytes bytes = reply(8 * mPositions.size() + 32);
    put(bytes, 16, count, 2);
    put(bytes, 18, count, 2);
    put(bytes, 20, 1, 2);
    for (std::uint32_t index = 0; index < count; ++index) {
        put(bytes, 32 + 4 * index, kFirstCrtc + index, 4);
        put(bytes, 32 + 4 * (count + index), kFirstOutput + index, 4);
    }
    const std::size_t mode = 32 + 8 * mPositions.size();
    put(bytes, mode, kMode, 4);
    put(bytes, mode + 4, 100, 2);
    put(bytes, mode + 6, 50, 2);
    return bytes;
}

Bytes ScriptedXServer::crtcInfo(std::uint32_t crtc) const
{
    const auto index = crtc - kFirstCrtc;
    Bytes bytes = reply(4);
    if (index >= mPositions.size())
        return bytes;
    put(bytes, 12, static_cast<std::uint32_t>(mPositions[index]), 2);
    put(bytes, 16, 100, 2);
    put(bytes, 18, 50, 2);
    put(bytes, 20, kMode, 4);
    put(bytes, 24, 1, 2);
    put(bytes, 28, 1, 2);
    put(bytes, 32, kFirstOutput + index, 4);
    return bytes;
}

Bytes ScriptedXServer::outputInfo(std::uint32_t output) const
{
    const auto crtc = kFirstCrtc + output - kFirstOutput;
    Bytes bytes = reply(4 + 4 + 4);
    put(bytes, 12, crtc, 4);
    put(bytes, 26, 1, 2);
    put(bytes, 28, 1, 2);
    put(bytes, 36, crtc, 4);
    put(bytes, 40, kMode, 4);
    return bytes;
}
