#include "Platform/Desktop/Discovery/DesktopNetService.h"

#include <algorithm>
#include <utility>

namespace farview
{

std::shared_ptr<DesktopNetService> DesktopNetService::make(std::shared_ptr<KnownService> service)
{
    std::shared_ptr<DesktopNetService> made(new DesktopNetService(std::move(service)));
    made->mService->addObserver(made);
    return made;
}

DesktopNetService::DesktopNetService(std::shared_ptr<KnownService> service)
    : mService(std::move(service)), mDomain(mService->name().domain + ".")
{
}

std::optional<std::string> DesktopNetService::hostName() const
{
    if (!mWasResolved || mService->hostName().empty())
        return std::nullopt;
    return mService->hostName();
}

Data DesktopNetService::TXTRecordData() const
{
    return mWasResolved || mMonitor ? mService->TXTRecord() : Data{};
}

std::vector<Endpoint> DesktopNetService::endpoints() const
{
    return mWasResolved ? mService->endpoints() : std::vector<Endpoint>{};
}

void DesktopNetService::setDelegate(std::weak_ptr<NetServiceDelegate> delegate)
{
    mDelegate = std::move(delegate);
}

void DesktopNetService::resolveWithTimeout(Duration timeout)
{
    endResolve();
    mIsWaiting = true;
    if (!mService->isPresent() || mService->isFreshlyResolved()) {
        answerOnNextTurn();
        return;
    }
    mTimeout = std::make_unique<QTimer>();
    mTimeout->setSingleShot(true);
    mTimeout->setTimerType(Qt::PreciseTimer);
    QObject::connect(mTimeout.get(), &QTimer::timeout, mTimeout.get(),
                     [this] { serviceCannotBeResolved("no answer in time"); });
    mTimeout->start(static_cast<int>(std::clamp(timeout.count(), 0.0, 86'400.0) * 1000));
    mService->resolve();
}

void DesktopNetService::answerOnNextTurn()
{
    QTimer::singleShot(0, [weak = weak_from_this(), number = mResolveNumber] {
        const auto self = weak.lock();
        if (!self || number != self->mResolveNumber)
            return;
        if (self->mService->isPresent())
            self->serviceWasResolved();
        else
            self->serviceCannotBeResolved("the service has gone");
    });
}

/// The timer may be the one that is just firing, so it goes a turn later.
void DesktopNetService::endResolve()
{
    ++mResolveNumber;
    mIsWaiting = false;
    if (auto* timer = mTimeout.release()) {
        timer->disconnect();
        timer->stop();
        timer->deleteLater();
    }
}

void DesktopNetService::serviceWasResolved()
{
    const auto self = shared_from_this();
    endResolve();
    mWasResolved = true;
    if (const auto delegate = mDelegate.lock())
        delegate->netServiceDidResolveAddress(self);
}

void DesktopNetService::serviceCannotBeResolved(const std::string& reason)
{
    const auto self = shared_from_this();
    endResolve();
    if (const auto delegate = mDelegate.lock())
        delegate->didNotResolve(self, reason);
}

void DesktopNetService::startMonitoring()
{
    if (!mMonitor && mService->isPresent())
        mMonitor = mService->monitor();
}

void DesktopNetService::stopMonitoring() { mMonitor.reset(); }

void DesktopNetService::recordChanged(const Data& record)
{
    if (!mMonitor)
        return;
    const auto self = shared_from_this();
    if (const auto delegate = mDelegate.lock())
        delegate->didUpdateTXTRecordData(self, record);
}

} // namespace farview
