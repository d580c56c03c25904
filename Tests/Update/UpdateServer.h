#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <QByteArray>
#include <QSslServer>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// An authority of the test's own, with a certificate for this computer ("127.0.0.1", "localhost").
class TestAuthority
{
public:
    TestAuthority();

    /// What must be trusted to trust the server; for SSL_CERT_FILE.
    std::string file() const { return mFolder.path("authority.pem"); }
    std::string serverCertificate() const { return mFolder.path("server.pem"); }
    std::string serverKey() const { return mFolder.path("server.key"); }

private:
    TemporaryFolder mFolder;
};

/// A web server on this computer that speaks TLS only. Answers while Qt's loop runs.
class UpdateServer
{
public:
    struct Answer {
        int status = 200;
        std::string body;
        std::string location;                 ///< where a redirection leads
        std::optional<std::size_t> announced; ///< the length it says, when it lies
        std::optional<std::size_t> sent;      ///< falls silent after so many bytes of the body
        bool trickles = false;                ///< sends ten bytes of the body per second
    };

    UpdateServer();

    /// "https://127.0.0.1:PORT/" and the path.
    std::string address(const std::string& path) const { return address("127.0.0.1", path); }
    /// The same place by another name of this computer.
    std::string address(const std::string& host, const std::string& path) const;
    const TestAuthority& authority() const { return mAuthority; }

    /// What is answered from now on; other paths are not found.
    void serve(const std::string& path, Answer answer) { mAnswers[path] = std::move(answer); }
    void serve(const std::string& path, std::string body)
    {
        serve(path, Answer{200, body, {}, {}, {}});
    }
    void redirect(const std::string& path, const std::string& target)
    {
        serve(path, Answer{302, {}, target, {}, {}});
    }
    /// The paths that were asked for, in order. A client may ask twice when a connection ends on
    /// it.
    const std::vector<std::string>& requests() const { return mRequests; }
    bool wasAskedFor(const std::string& path) const;

private:
    void accept();
    void answer(QTcpSocket& socket, const QByteArray& request);
    static void trickle(QTcpSocket& socket, const std::string& body);

    TestAuthority mAuthority;
    QSslServer mServer;
    std::map<std::string, Answer> mAnswers;
    std::vector<std::string> mRequests;
};
