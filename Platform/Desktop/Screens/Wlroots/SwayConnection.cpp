#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace farview
{
namespace
{

constexpr char magic[] = {'i', '3', '-', 'i', 'p', 'c'};

struct Header {
    char magic[sizeof farview::magic];
    std::uint32_t size;
    std::uint32_t type;
} __attribute__((packed));

/// A tree of thousands of windows is smaller.
constexpr std::uint32_t longestMessage = 16 << 20;
constexpr std::uint32_t isEvent = 0x80000000;
constexpr std::uint32_t windowEvent = isEvent | 3;
/// What a busy sway needs to answer.
constexpr std::chrono::milliseconds patience{250};

bool isSuccess(const QJsonDocument& answer)
{
    const auto results = answer.array();
    return !results.isEmpty() &&
           std::all_of(results.begin(), results.end(), [](const auto& result) {
               return result.toObject().value(QStringLiteral("success")).toBool();
           });
}

/// Titles and focus change all the time.
bool isAboutPlace(const QJsonDocument& event)
{
    static const QStringList changes = {"new", "close", "move", "floating", "fullscreen_mode"};
    return changes.contains(event[QStringLiteral("change")].toString());
}

} // namespace

enum class SwayConnection::Message : std::uint32_t {
    command = 0,
    subscribe = 2,
    getTree = 4,
    getVersion = 7
};

std::string swayQuoted(const std::string& text)
{
    if (text.find('"') == std::string::npos)
        return '"' + text + '"';
    auto quoted = text;
    std::erase(quoted, '\'');
    return '\'' + quoted + '\'';
}

SwayConnection::SwayConnection(const std::string& path)
{
    connect(&mSocket, &QLocalSocket::readyRead, this, &SwayConnection::read);
    connect(&mSocket, &QLocalSocket::disconnected, this, &SwayConnection::lose);
    connect(&mSocket, &QLocalSocket::errorOccurred, this, &SwayConnection::lose);
    mSocket.connectToServer(QString::fromStdString(path));
}

void SwayConnection::finish()
{
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!mIsLost && !mWaiting.empty() && std::chrono::steady_clock::now() < end)
        mSocket.waitForReadyRead(int(patience.count()));
}

void SwayConnection::run(const std::string& command, std::function<void(bool)> then)
{
    send(Message::command, command,
         [then = std::move(then)](const auto& answer) { then(isSuccess(answer)); });
}

void SwayConnection::askForTree(Answer then) { send(Message::getTree, {}, std::move(then)); }

void SwayConnection::askForVersion(Answer then) { send(Message::getVersion, {}, std::move(then)); }

void SwayConnection::watchWindows()
{
    if (!std::exchange(mIsWatching, true))
        send(Message::subscribe, R"(["window"])", [](auto&) {});
}

void SwayConnection::send(Message type, const std::string& payload, Answer then)
{
    if (mIsLost)
        return;
    Header header{{}, static_cast<std::uint32_t>(payload.size()), static_cast<std::uint32_t>(type)};
    std::memcpy(header.magic, magic, sizeof magic);
    mWaiting.push_back(std::move(then));
    mSocket.write(reinterpret_cast<const char*>(&header), sizeof header);
    mSocket.write(payload.data(), static_cast<qint64>(payload.size()));
    mSocket.flush();
}

void SwayConnection::read()
{
    while (!mIsLost && readOne())
        ;
}

bool SwayConnection::readOne()
{
    Header header{};
    if (mSocket.peek(reinterpret_cast<char*>(&header), sizeof header) < qint64(sizeof header))
        return false;
    if (std::memcmp(header.magic, magic, sizeof magic) != 0 || header.size > longestMessage) {
        lose();
        return false;
    }
    if (mSocket.bytesAvailable() < qint64(sizeof header) + header.size)
        return false;
    mSocket.skip(sizeof header);
    handle(header.type, mSocket.read(header.size));
    return true;
}

void SwayConnection::handle(std::uint32_t type, const QByteArray& payload)
{
    const auto json = QJsonDocument::fromJson(payload);
    if ((type & isEvent) != 0) {
        if (type == windowEvent && isAboutPlace(json) && mEvents.windowChanged)
            mEvents.windowChanged();
        return;
    }
    if (mWaiting.empty())
        return lose();
    const auto answer = std::move(mWaiting.front());
    mWaiting.pop_front();
    answer(json);
}

void SwayConnection::lose()
{
    if (std::exchange(mIsLost, true))
        return;
    mSocket.abort();
    QTimer::singleShot(0, this, [this] {
        if (mEvents.lost)
            mEvents.lost();
    });
}

} // namespace farview
