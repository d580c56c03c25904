#include "Platform/Desktop/Screens/X11/MonitorOrders.h"

#include <sys/eventfd.h>

#include <utility>

namespace farview
{

MonitorOrders::MonitorOrders() : mDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void MonitorOrders::wish(const std::function<void(Wishes&)>& change)
{
    {
        const std::lock_guard lock(mMutex);
        change(mWishes);
    }
    wake();
}

void MonitorOrders::wake() const { ::eventfd_write(mDescriptor.get(), 1); }

MonitorOrders::Wishes MonitorOrders::take()
{
    eventfd_t count = 0;
    ::eventfd_read(mDescriptor.get(), &count);
    const std::lock_guard lock(mMutex);
    return std::exchange(mWishes, {});
}

} // namespace farview
