#pragma once

#include "Link/LinkCandidates.h"

#include <QSslSocket>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

/// How long to try. Changed by tests only.
struct ConnectorTimes {
    std::chrono::milliseconds deadline{5000};
    /// Between the start of one attempt and of the next.
    std::chrono::milliseconds stagger{250};
};

/// One try to reach a device at any of its addresses: the first socket that connects wins. Names
/// are never looked up. Its destruction ends the try without a report. Main thread only.
class HostConnector
{
public:
    using Connected = std::function<void(std::unique_ptr<QSslSocket>)>;
    /// `why` is a short text for the log.
    using Failed = std::function<void(const std::string& why)>;

    explicit HostConnector(ConnectorTimes times);
    ~HostConnector();
    HostConnector(const HostConnector&) = delete;
    HostConnector& operator=(const HostConnector&) = delete;

    /// What the last attempt met; `SocketTimeoutError` when the time was over. To be asked inside
    /// the report of a failure.
    QAbstractSocket::SocketError error() const { return mError; }

    /// Begins, once. Exactly one of the two is called, from the event loop, never inside this call.
    /// The connector may be destroyed from inside it.
    void start(std::vector<LinkCandidate> candidates, Connected connected, Failed failed);

private:
    void tryNext();
    void attemptSucceeded(QSslSocket* socket);
    void attemptFailed(QSslSocket* socket);
    void timeIsOver();
    void fail(std::string why);
    void stop();

    ConnectorTimes mTimes;
    Connected mConnected;
    Failed mFailed;
    std::vector<LinkCandidate> mCandidates;
    std::size_t mNext = 0;
    std::vector<std::unique_ptr<QSslSocket>> mAttempts;
    std::string mLastError;
    QAbstractSocket::SocketError mError = QAbstractSocket::UnknownSocketError;
    QTimer mDeadline;
    QTimer mStagger;
    QObject mContext;
};

} // namespace farview
