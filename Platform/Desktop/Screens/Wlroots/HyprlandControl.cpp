#include "Platform/Desktop/Screens/Wlroots/HyprlandControl.h"

#include <QLocalSocket>
#include <QTimer>

#include <unistd.h>

#include <locale>
#include <sstream>
#include <utility>

namespace farview
{
namespace
{

constexpr int patience = 2000; // milliseconds
constexpr qint64 longestAnswer = 4096;

/// One request. Deletes itself after the answer.
class Request : public QLocalSocket
{
public:
    Request(QObject* parent, const std::string& text, CompositorControl::Answer then)
        : QLocalSocket(parent), mThen(std::move(then))
    {
        connect(this, &QLocalSocket::connected, this, [this, text] {
            write(text.data(), static_cast<qint64>(text.size()));
            flush();
        });
        connect(this, &QLocalSocket::disconnected, this, &Request::end);
        connect(this, &QLocalSocket::errorOccurred, this, &Request::end);
        QTimer::singleShot(patience, this, &Request::end);
        setReadBufferSize(longestAnswer);
    }

private:
    void end()
    {
        if (const auto then = std::exchange(mThen, nullptr))
            then(isOpen() && readAll().startsWith("ok"));
        deleteLater();
    }

    CompositorControl::Answer mThen;
};

} // namespace

void HyprlandControl::run(const std::string& request, Answer then)
{
    auto* socket = new Request(this, request, std::move(then));
    socket->connectToServer(QString::fromStdString(mPath));
}

void HyprlandControl::create(Answer then)
{
    run("/output create headless FARVIEW-" + std::to_string(::getpid()) + "-" +
            std::to_string(++mCreated),
        std::move(then));
}

void HyprlandControl::configure(const OutputWish& wish, Answer then)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "/keyword monitor " << wish.name << "," << wish.width << "x" << wish.height << "@"
         << rateOfOurs / 1000.0 << ",";
    if (wish.corner)
        text << wish.corner->x << "x" << wish.corner->y;
    else
        text << "auto";
    text << "," << wish.scale;
    run(text.str(), std::move(then));
}

void HyprlandControl::remove(const std::string& name, Answer then)
{
    run("/output remove " + name, std::move(then));
}

} // namespace farview
