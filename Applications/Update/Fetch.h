#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

/// What to fetch, and the limits.
struct FetchOrder {
    QUrl address;                    ///< https: or file:
    std::uint64_t largestSize = 0;   ///< in bytes
    UpdateProblem whenTooMuch{};     ///< the failure when more comes
    std::chrono::seconds patience{}; ///< how long the server may be silent
    std::chrono::seconds deadline{}; ///< how long the whole transfer may take
};

/// Gets one thing at a time into memory, over HTTPS or from a file. Redirections that
/// do not lead to HTTPS are refused; nothing is decompressed, cached or sent along. Main thread;
/// needs the application object.
class Fetch
{
public:
    using Progress = std::function<void(std::uint64_t received)>;
    /// Called once, on a later turn of the loop: with the bytes, or with a failure.
    using Then = std::function<void(std::string bytes, std::optional<UpdateFailure> failure)>;

    Fetch();
    ~Fetch();
    Fetch(const Fetch&) = delete;
    Fetch& operator=(const Fetch&) = delete;

    void start(const FetchOrder& order, Progress progress, Then then);
    /// Ends the transfer; nothing more is called.
    void stop();

private:
    struct EndReply {
        void operator()(QNetworkReply* reply) const;
    };

    void openFile();
    void openAddress();
    void connectReply();
    void redirect(const QUrl& target);
    void announce();
    void receive();
    void conclude();
    void end(std::optional<UpdateFailure> failure);

    QNetworkAccessManager mManager;
    FetchOrder mOrder;
    Progress mProgress;
    Then mThen;
    std::unique_ptr<QNetworkReply, EndReply> mReply;
    std::unique_ptr<QObject> mListener; ///< for as long as the reply is listened to
    std::string mBytes;
    QTimer mSilence;
    QTimer mDeadline;
};

/// Whether updates may come from there.
bool isSecureAddress(const QUrl& address);

} // namespace farview
