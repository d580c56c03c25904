#pragma once

#include <QJsonDocument>
#include <QLocalSocket>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>

namespace farview
{

/// Text for a command of sway's, as one word of it. Text with both kinds of quotes, for which sway
/// has no way, loses one kind.
std::string swayQuoted(const std::string& text);

/// Speaks to sway through the socket that $SWAYSOCK names. Main thread only; nothing but `finish`
/// blocks.
class SwayConnection : public QObject
{
public:
    /// Called on a later turn.
    struct Events {
        std::function<void()> windowChanged; ///< after `watchWindows`
        std::function<void()> lost;          ///< or nobody listens; nothing follows
    };
    using Answer = std::function<void(const QJsonDocument& answer)>;

    explicit SwayConnection(const std::string& path);
    ~SwayConnection() override { mSocket.disconnect(this); }
    /// Waits for the answers that are missing, but not for a sway that stands still: it does not
    /// read what was sent just before the end of a connection.
    void finish();

    void setEvents(Events events) { mEvents = std::move(events); }
    /// Runs a command, or several with ';' between them.
    void run(
        const std::string& command, std::function<void(bool isDone)> then = [](bool) {});
    /// The tree of everything that it shows.
    void askForTree(Answer then);
    void askForVersion(Answer then);
    void watchWindows();

private:
    enum class Message : std::uint32_t;

    void send(Message type, const std::string& payload, Answer then);
    void read();
    bool readOne();
    void handle(std::uint32_t type, const QByteArray& payload);
    void lose();

    Events mEvents;
    QLocalSocket mSocket;
    std::deque<Answer> mWaiting; ///< answered in order
    bool mIsWatching = false;
    bool mIsLost = false;
};

} // namespace farview
