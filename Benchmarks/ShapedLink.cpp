#include "Benchmarks/ShapedLink.h"

#include "Platform/Posix/FileDescriptor.h"

#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <poll.h>
#include <random>
#include <stdexcept>
#include <vector>

namespace farview
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr double bytesASecond = 30e6 / 8;
constexpr std::chrono::milliseconds delay{10};
constexpr std::chrono::milliseconds longestQueue{100};
constexpr unsigned lostOneOf = 100;

struct Packet {
    Clock::time_point due;
    std::vector<char> data;
};

struct Link {
    FileDescriptor device{open("/dev/net/tun", O_RDWR | O_NONBLOCK | O_CLOEXEC)};
    std::deque<Packet> waiting{};
    Clock::time_point free{}; ///< when all that waits has been sent
    std::mt19937 random{1};
};

/// The computer talks to itself only through an address that it takes for another's. Two addresses
/// change places without changing any checksum.
void sendBack(std::vector<char>& data)
{
    constexpr int source = 12;
    constexpr int destination = 16;
    std::swap_ranges(data.begin() + source, data.begin() + destination, data.begin() + destination);
}

void take(Link& link)
{
    constexpr int smallestHeader = 20;
    char bytes[2048];
    for (ssize_t size = 0; (size = read(link.device.get(), bytes, sizeof bytes)) > 0;) {
        const auto now = Clock::now();
        const bool isVersion4 = size >= smallestHeader && bytes[0] >> 4 == 4;
        if (!isVersion4 || link.free > now + longestQueue)
            continue;
        const std::chrono::duration<double> sending(static_cast<double>(size) / bytesASecond);
        link.free = std::max(link.free, now) + std::chrono::duration_cast<Clock::duration>(sending);
        if (link.random() % lostOneOf == 0)
            continue;
        link.waiting.push_back({link.free + delay, {bytes, bytes + size}});
        sendBack(link.waiting.back().data);
    }
}

void deliver(Link& link)
{
    while (!link.waiting.empty() && link.waiting.front().due <= Clock::now()) {
        const auto& data = link.waiting.front().data;
        // What the receiver has no room for is lost, as on any link.
        [[maybe_unused]] const auto written = write(link.device.get(), data.data(), data.size());
        link.waiting.pop_front();
    }
}

void carry(const std::stop_token& stop, Link& link)
{
    while (!stop.stop_requested()) {
        std::chrono::nanoseconds wait = std::chrono::milliseconds(50);
        if (!link.waiting.empty())
            wait = std::clamp<std::chrono::nanoseconds>(link.waiting.front().due - Clock::now(),
                                                        std::chrono::nanoseconds(0), wait);
        const timespec limit{0, static_cast<long>(wait.count())};
        pollfd descriptor{link.device.get(), POLLIN, 0};
        ppoll(&descriptor, 1, &limit, nullptr);
        take(link);
        deliver(link);
    }
}

} // namespace

std::jthread carryShapedLink()
{
    Link link;
    ifreq request{};
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    std::strcpy(request.ifr_name, "shaped");
    const char* const orders = "ip address add 10.97.0.1 peer 10.97.0.2 dev shaped && "
                               "ip link set shaped up";
    if (ioctl(link.device.get(), TUNSETIFF, &request) != 0 || std::system(orders) != 0)
        throw std::runtime_error("no link can be shaped here: /dev/net/tun or ip is not allowed");
    return std::jthread(
        [link = std::move(link)](const std::stop_token& stop) mutable { carry(stop, link); });
}

} // namespace farview
