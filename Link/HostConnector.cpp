#include "Link/HostConnector.h"

#include <QNetworkProxy>

#include <algorithm>
#include <utility>

namespace farview
{

HostConnector::HostConnector(ConnectorTimes times)
    : mTimes(times), mLastError("The device has no address to connect to.")
{
    mDeadline.setSingleShot(true);
    mStagger.setSingleShot(true);
    QObject::connect(&mDeadline, &QTimer::timeout, &mContext, [this] { timeIsOver(); });
    QObject::connect(&mStagger, &QTimer::timeout, &mContext, [this] { tryNext(); });
}

HostConnector::~HostConnector() { stop(); }

void HostConnector::start(std::vector<LinkCandidate> candidates, Connected connected, Failed failed)
{
    mCandidates = std::move(candidates);
    mConnected = std::move(connected);
    mFailed = std::move(failed);
    mDeadline.start(mTimes.deadline);
    mStagger.start(0);
}

void HostConnector::tryNext()
{
    if (mNext == mCandidates.size()) {
        if (mAttempts.empty())
            fail(mLastError);
        return;
    }
    const LinkCandidate& candidate = mCandidates[mNext++];
    mAttempts.push_back(std::make_unique<QSslSocket>());
    QSslSocket* socket = mAttempts.back().get();
    socket->setProxy(QNetworkProxy::NoProxy);
    // Queued: some failures are reported inside the call itself.
    QObject::connect(
        socket, &QSslSocket::connected, &mContext, [this, socket] { attemptSucceeded(socket); },
        Qt::QueuedConnection);
    QObject::connect(
        socket, &QSslSocket::errorOccurred, &mContext, [this, socket] { attemptFailed(socket); },
        Qt::QueuedConnection);
    mStagger.start(mTimes.stagger);
    socket->connectToHost(candidate.address, candidate.port);
}

void HostConnector::attemptSucceeded(QSslSocket* socket)
{
    const auto found = std::find_if(mAttempts.begin(), mAttempts.end(),
                                    [&](const auto& attempt) { return attempt.get() == socket; });
    if (found == mAttempts.end())
        return;
    std::unique_ptr<QSslSocket> winner = std::move(*found);
    mAttempts.erase(found);
    winner->disconnect();
    stop();
    // Moved out first: the connector may be destroyed inside.
    const Connected connected = std::exchange(mConnected, nullptr);
    connected(std::move(winner));
}

void HostConnector::attemptFailed(QSslSocket* socket)
{
    const auto found = std::find_if(mAttempts.begin(), mAttempts.end(),
                                    [&](const auto& attempt) { return attempt.get() == socket; });
    if (found == mAttempts.end())
        return;
    mLastError = socket->errorString().toStdString();
    mError = socket->error();
    mAttempts.erase(found);
    tryNext();
}

void HostConnector::timeIsOver()
{
    mError = QAbstractSocket::SocketTimeoutError;
    fail("The device did not answer in time.");
}

void HostConnector::fail(std::string why)
{
    stop();
    // Both moved out first: the connector may be destroyed inside.
    const Failed failed = std::exchange(mFailed, nullptr);
    const std::string reason = std::move(why);
    failed(reason);
}

void HostConnector::stop()
{
    mDeadline.stop();
    mStagger.stop();
    for (auto& attempt : mAttempts)
        attempt->disconnect();
    mAttempts.clear();
    mCandidates.clear();
    mNext = 0;
}

} // namespace farview
