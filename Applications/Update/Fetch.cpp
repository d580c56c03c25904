#include "Applications/Update/Fetch.h"

#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/WholeFile.h"

#include <QNetworkInterface>
#include <QNetworkProxyFactory>
#include <QSslConfiguration>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

constexpr int mostRedirections = 5;
constexpr qint64 readAhead = 64 * 1024;
constexpr int statusOfContents = 200;

/// The system's certificate authorities, or those in the file that the user names instead. What is
/// fetched counts only when it is signed, whoever vouched for the server.
QSslConfiguration trust()
{
    auto configuration = QSslConfiguration::defaultConfiguration();
    const QString file = qEnvironmentVariable("SSL_CERT_FILE");
    if (!file.isEmpty())
        configuration.setCaCertificates(QSslCertificate::fromPath(file));
    return configuration;
}

QNetworkRequest requestFor(const QUrl& address)
{
    QNetworkRequest request(address);
    request.setSslConfiguration(trust());
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirections);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    // This also keeps the library from decompressing: bytes are counted as they arrive.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("farview-update"));
    return request;
}

bool leadsOut(const QNetworkInterface& interface)
{
    const auto flags = interface.flags();
    return flags.testFlag(QNetworkInterface::IsRunning) &&
           !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty();
}

bool hasNetwork()
{
    const auto interfaces = QNetworkInterface::allInterfaces();
    return std::any_of(interfaces.begin(), interfaces.end(), leadsOut);
}

/// The problem that an error of the transfer means to the user.
UpdateProblem problemOf(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::SslHandshakeFailedError:
        return UpdateProblem::certificate;
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::ProtocolUnknownError:
        return UpdateProblem::insecureAddress;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return hasNetwork() ? UpdateProblem::server : UpdateProblem::noNetwork;
    case QNetworkReply::TimeoutError:
        return UpdateProblem::stalled;
    default:
        return UpdateProblem::server;
    }
}

} // namespace

bool isSecureAddress(const QUrl& address)
{
    return address.isValid() &&
           (address.isLocalFile() ||
            (address.scheme() == QLatin1String("https") && !address.host().isEmpty()));
}

void Fetch::EndReply::operator()(QNetworkReply* reply) const
{
    // This may run within one of the reply's own signals, when it cannot be deleted yet.
    QTimer::singleShot(0, reply, [reply] {
        reply->abort();
        reply->deleteLater();
    });
}

Fetch::Fetch()
{
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    mSilence.setSingleShot(true);
    mDeadline.setSingleShot(true);
    QObject::connect(&mSilence, &QTimer::timeout, &mSilence, [this] {
        end(UpdateFailure{UpdateProblem::stalled, "the server fell silent"});
    });
    QObject::connect(&mDeadline, &QTimer::timeout, &mDeadline, [this] {
        end(UpdateFailure{UpdateProblem::stalled, "the server is too slow"});
    });
}

Fetch::~Fetch() { stop(); }

void Fetch::start(const FetchOrder& order, Progress progress, Then then)
{
    stop();
    mOrder = order;
    mProgress = std::move(progress);
    mThen = std::move(then);
    mBytes.clear();
    if (order.address.isLocalFile())
        return QTimer::singleShot(0, &mManager, [this] { openFile(); });
    openAddress();
}

void Fetch::stop()
{
    mThen = nullptr;
    mListener.reset();
    mReply.reset();
    mSilence.stop();
    mDeadline.stop();
}

void Fetch::openFile()
{
    if (!mThen)
        return;
    const std::string path = mOrder.address.toLocalFile().toStdString();
    WholeFile file = readWholeFile(path, mOrder.largestSize);
    if (file.status == WholeFile::Status::tooLarge)
        return end(UpdateFailure{mOrder.whenTooMuch, path + " is too large"});
    if (file.status != WholeFile::Status::read)
        return end(UpdateFailure{UpdateProblem::server, path + ": " + errorText(file.error)});
    mBytes = std::move(file.bytes);
    mProgress(mBytes.size());
    end(std::nullopt);
}

void Fetch::openAddress()
{
    mReply.reset(mManager.get(requestFor(mOrder.address)));
    mReply->setReadBufferSize(readAhead);
    connectReply();
    mSilence.start(mOrder.patience);
    mDeadline.start(mOrder.deadline);
}

void Fetch::connectReply()
{
    mListener = std::make_unique<QObject>();
    QObject* listener = mListener.get();
    QNetworkReply* reply = mReply.get();
    QObject::connect(reply, &QNetworkReply::redirected, listener,
                     [this](const QUrl& target) { redirect(target); });
    QObject::connect(reply, &QNetworkReply::metaDataChanged, listener, [this] { announce(); });
    QObject::connect(reply, &QNetworkReply::readyRead, listener, [this] { receive(); });
    QObject::connect(reply, &QNetworkReply::finished, listener, [this] { conclude(); });
}

void Fetch::redirect(const QUrl& target)
{
    if (target.scheme() != QLatin1String("https"))
        return end(UpdateFailure{UpdateProblem::insecureAddress,
                                 "redirected to " + target.toString().toStdString()});
    mSilence.start();
    Q_EMIT mReply->redirectAllowed();
}

void Fetch::announce()
{
    mSilence.start();
    const auto length = mReply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toULongLong() > mOrder.largestSize)
        end(UpdateFailure{mOrder.whenTooMuch, "the server announces more than may come"});
}

void Fetch::receive()
{
    if (!mReply || mReply->error() != QNetworkReply::NoError)
        return;
    mSilence.start();
    const QByteArray bytes = mReply->readAll();
    if (mBytes.size() + static_cast<std::size_t>(bytes.size()) > mOrder.largestSize)
        return end(UpdateFailure{mOrder.whenTooMuch, "the server sends more than may come"});
    mBytes.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    mProgress(mBytes.size());
}

void Fetch::conclude()
{
    if (mReply->error() != QNetworkReply::NoError)
        return end(UpdateFailure{problemOf(mReply->error()), mReply->errorString().toStdString()});
    const int status = mReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != statusOfContents)
        return end(UpdateFailure{UpdateProblem::server, "status " + std::to_string(status)});
    receive();
    end(std::nullopt);
}

void Fetch::end(std::optional<UpdateFailure> failure)
{
    const Then then = std::exchange(mThen, nullptr);
    stop();
    if (then)
        then(failure ? std::string() : std::move(mBytes), std::move(failure));
}

} // namespace farview
