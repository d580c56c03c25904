#include "Tests/Update/UpdateServer.h"

#include <QFile>
#include <QHostAddress>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace
{

QByteArray contentsOf(const std::string& path)
{
    QFile file(QString::fromStdString(path));
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void run(const std::string& command)
{
    if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
        throw std::runtime_error("openssl cannot make a certificate");
}

QByteArray headOf(const UpdateServer::Answer& answer)
{
    const auto length = answer.announced.value_or(answer.body.size());
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\n";
    if (!answer.location.empty())
        head += "Location: " + QByteArray::fromStdString(answer.location) + "\r\n";
    return head + "Content-Length: " + QByteArray::number(static_cast<qulonglong>(length)) +
           "\r\nConnection: close\r\n\r\n";
}

} // namespace

TestAuthority::TestAuthority()
{
    const std::string request =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 ";
    run(request + "-subj '/CN=Authority of a test' -keyout " + mFolder.path("authority.key") +
        " -out " + file());
    run(request + "-subj /CN=localhost -addext subjectAltName=IP:127.0.0.1,DNS:localhost" +
        " -addext basicConstraints=critical,CA:FALSE -CA " + file() + " -CAkey " +
        mFolder.path("authority.key") + " -keyout " + serverKey() + " -out " + serverCertificate());
}

UpdateServer::UpdateServer()
{
    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(
        QSslCertificate(contentsOf(mAuthority.serverCertificate()), QSsl::Pem));
    configuration.setPrivateKey(QSslKey(contentsOf(mAuthority.serverKey()), QSsl::Ec));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    mServer.setSslConfiguration(configuration);
    QObject::connect(&mServer, &QTcpServer::pendingConnectionAvailable, &mServer,
                     [this] { accept(); });
    if (!mServer.listen(QHostAddress::AnyIPv4))
        throw std::runtime_error("cannot listen");
}

std::string UpdateServer::address(const std::string& host, const std::string& path) const
{
    return "https://" + host + ":" + std::to_string(mServer.serverPort()) + "/" + path;
}

bool UpdateServer::wasAskedFor(const std::string& path) const
{
    return std::find(mRequests.begin(), mRequests.end(), path) != mRequests.end();
}

void UpdateServer::accept()
{
    while (QTcpSocket* socket = mServer.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        auto request = std::make_shared<QByteArray>();
        const auto read = [this, socket, request] {
            *request += socket->readAll();
            if (request->contains("\r\n\r\n"))
                answer(*socket, *request);
        };
        QObject::connect(socket, &QTcpSocket::readyRead, socket, read);
        read();
    }
}

void UpdateServer::answer(QTcpSocket& socket, const QByteArray& request)
{
    // "GET /path HTTP/1.1"
    const std::string path = request.mid(5, request.indexOf(' ', 5) - 5).toStdString();
    mRequests.push_back(path);
    const auto found = mAnswers.find(path);
    const Answer answer = found == mAnswers.end() ? Answer{404, {}, {}, {}, {}} : found->second;
    socket.disconnect(SIGNAL(readyRead()));
    socket.write(headOf(answer));
    if (answer.trickles)
        return trickle(socket, answer.body);
    socket.write(
        QByteArray::fromStdString(answer.body.substr(0, answer.sent.value_or(answer.body.size()))));
    socket.flush();
    if (!answer.sent)
        socket.disconnectFromHost();
}

void UpdateServer::trickle(QTcpSocket& socket, const std::string& body)
{
    auto* timer = new QTimer(&socket);
    QObject::connect(timer, &QTimer::timeout, &socket, [&socket, body, sent = 0u]() mutable {
        if (sent < body.size())
            socket.write(&body[sent++], 1);
    });
    timer->start(std::chrono::milliseconds(100));
}
