// What it costs a processor to send 20 MB a second over the link, and to receive them. Prints two
// numbers, in percent of a processor: of the host, of the device. It is built twice: picture-travel
// compares.

#include "Link/LinkConnection.h"
#include "Link/LinkListener.h"

#include <QCoreApplication>
#include <QHostAddress>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <unistd.h>

namespace
{

using namespace farview;
using std::chrono::milliseconds;

constexpr milliseconds span{4000};
constexpr milliseconds beat{5};
constexpr std::size_t inABeat = 100'000;

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Either side. Everybody is known to it; it ends with its connection.
struct Side final : LinkConnectionDelegate {
    std::function<void(LinkConnection&)> opened = [](LinkConnection&) {};
    double before = 0;

    void linkDidGreet(LinkConnection& connection) override { connection.accept(); }
    LinkTrust linkDidProveKey(LinkConnection&) override { return true; }
    void linkDidOpen(LinkConnection& connection) override
    {
        before = processorSeconds();
        opened(connection);
    }
    void linkDidReceive(LinkConnection&, const LinkFrame&) override {}
    void linkDidEnd(LinkConnection&, const LinkEnd&) override
    {
        const double used = processorSeconds() - before;
        std::printf("%.3f ", 100 * used / std::chrono::duration<double>(span).count());
        QCoreApplication::quit();
    }
};

int receive(int argc, char** argv, int tellsPort)
{
    QCoreApplication application(argc, argv);
    const auto side = std::make_shared<Side>();
    LinkListener listener;
    std::shared_ptr<LinkConnection> link;
    QObject::connect(&listener, &LinkListener::newConnection, &listener, [&] {
        link = LinkConnection::make(LinkSide::device, listener.next(), side, makeOwnKey(),
                                    ownGreeting(), LinkTimes{});
    });
    listener.listen(QHostAddress::LocalHost, 0);
    const quint16 port = listener.serverPort();
    if (write(tellsPort, &port, sizeof port) != sizeof port)
        return EXIT_FAILURE;
    return QCoreApplication::exec();
}

int send(int argc, char** argv, quint16 port)
{
    QCoreApplication application(argc, argv);
    const auto side = std::make_shared<Side>();
    const LinkScreenRectangle picture{{0, 0, 64, 64}, QLScreenEncodingJPG, Bytes(inABeat, 7)};
    QTimer beats;
    beats.setTimerType(Qt::PreciseTimer);
    side->opened = [&](LinkConnection& link) {
        QObject::connect(&beats, &QTimer::timeout, &beats, [&] { link.send(picture); });
        QTimer::singleShot(span, &beats, [&] {
            beats.stop();
            link.close({LinkGoodbyeCode::quitting, ""});
        });
        beats.start(beat);
    };
    auto socket = std::make_unique<QSslSocket>();
    QSslSocket* const connecting = socket.get();
    std::shared_ptr<LinkConnection> link;
    QObject::connect(connecting, &QSslSocket::connected, &beats, [&] {
        QObject::disconnect(connecting, nullptr, &beats, nullptr);
        link = LinkConnection::make(LinkSide::host, std::move(socket), side, makeOwnKey(),
                                    ownGreeting(), LinkTimes{});
    });
    connecting->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    int ends[2] = {};
    if (pipe(ends) != 0)
        return EXIT_FAILURE;
    if (fork() == 0)
        return receive(argc, argv, ends[1]);
    quint16 port = 0;
    if (read(ends[0], &port, sizeof port) != sizeof port)
        return EXIT_FAILURE;
    return send(argc, argv, port);
}
