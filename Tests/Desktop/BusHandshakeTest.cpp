#include "Platform/Desktop/Bus/BusHandshake.h"

#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using namespace farview;
using std::chrono::milliseconds;

namespace
{

constexpr milliseconds patience{300};

/// A local socket on which somebody listens.
class Listener
{
public:
    Listener() : mDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path().c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(mDescriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(mDescriptor, 4), 0);
    }
    ~Listener()
    {
        ::close(mDescriptor);
        if (mAnswerer.joinable())
            mAnswerer.join();
    }
    /// Answers the first that connects with those words, and hangs up.
    void answerWith(const std::string& words)
    {
        mAnswerer = std::thread([this, words] {
            const int guest = ::accept(mDescriptor, nullptr, nullptr);
            char heard[64];
            if (::recv(guest, heard, sizeof heard, 0) > 0 && !words.empty())
                ::send(guest, words.data(), words.size(), MSG_NOSIGNAL);
            ::close(guest);
        });
    }
    std::string path() const { return mFolder.path("bus"); }
    std::string address() const { return "unix:path=" + path(); }

private:
    TemporaryFolder mFolder;
    int mDescriptor;
    std::thread mAnswerer;
};

TEST(BusHandshake, IsAnsweredByARealBus)
{
    const PrivateBus bus;
    EXPECT_EQ(checkBus(bus.address(), patience), BusAnswer::answers);
    EXPECT_EQ(checkBus("unix:path=/nonexistent/bus;" + bus.address(), patience), BusAnswer::answers)
        << "the second address counts when the first is dead";
}

TEST(BusHandshake, NoticesABusThatStopped)
{
    PrivateBus bus;
    bus.process().sendSignal(SIGSTOP);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(checkBus(bus.address(), patience), BusAnswer::silent);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(10))
        << "a library's call waits 25 s";
    bus.process().sendSignal(SIGCONT);
}

TEST(BusHandshake, NoticesThatNobodyListens)
{
    PrivateBus bus;
    bus.stop();
    EXPECT_EQ(checkBus(bus.address(), patience), BusAnswer::refused);
    EXPECT_EQ(checkBus("unix:path=/nonexistent/bus", patience), BusAnswer::refused);
    EXPECT_EQ(checkBus("unix:path=/" + std::string(500, 'x'), patience), BusAnswer::answers)
        << "a path that no socket can have is left to the library";
}

TEST(BusHandshake, TellsNoAddressFromAnAddressOfAnotherKind)
{
    EXPECT_EQ(checkBus("", patience), BusAnswer::noAddress);
    EXPECT_EQ(checkBus("tcp:host=localhost,port=1", patience), BusAnswer::answers);
    EXPECT_EQ(checkBus("unix:", patience), BusAnswer::answers);
}

TEST(BusHandshake, NoticesThatThisUserIsNotLetIn)
{
    Listener strict;
    strict.answerWith("REJECTED EXTERNAL\r\n");
    EXPECT_EQ(checkBus(strict.address(), patience), BusAnswer::rejects);
}

TEST(BusHandshake, TakesAHangUpForSilence)
{
    Listener rude;
    rude.answerWith("");
    EXPECT_EQ(checkBus(rude.address(), patience), BusAnswer::silent);
}

TEST(BusHandshake, ReadsEncodedPaths)
{
    const PrivateBus bus;
    std::string encoded = bus.address();
    const auto slash = encoded.rfind('/');
    encoded.replace(slash, 1, "%2f");
    EXPECT_EQ(checkBus(encoded, patience), BusAnswer::answers);
}

/// A check that is not waited for, and what was heard of it.
class CheckingABus : public testing::Test
{
protected:
    void check(const std::string& address, milliseconds limit = patience)
    {
        checking = std::make_unique<BusCheck>(address, limit,
                                              [this](BusAnswer answer) { heard = answer; });
    }
    std::optional<BusAnswer> answer()
    {
        waitUntil([this] { return heard.has_value(); });
        return std::exchange(heard, std::nullopt);
    }

    PrivateBus bus;
    std::unique_ptr<BusCheck> checking;
    std::optional<BusAnswer> heard;
};

TEST_F(CheckingABus, IsAnsweredOnALaterTurnAndOnce)
{
    check(bus.address());
    EXPECT_EQ(heard, std::nullopt);
    EXPECT_EQ(answer(), BusAnswer::answers);
    runLoopFor(2 * patience);
    EXPECT_EQ(heard, std::nullopt);
}

TEST_F(CheckingABus, SaysTheSameAsWhoWaits)
{
    for (const std::string address : {"", "unix:path=/nonexistent/bus", "tcp:host=localhost"}) {
        check(address);
        EXPECT_EQ(heard, std::nullopt) << address;
        EXPECT_EQ(answer(), checkBus(address, patience)) << address;
    }
}

TEST_F(CheckingABus, GivesAStoppedBusUpAfterItsLimitAndNotBefore)
{
    bus.process().sendSignal(SIGSTOP);
    const auto begun = std::chrono::steady_clock::now();
    check(bus.address());
    EXPECT_EQ(answer(), BusAnswer::silent);
    EXPECT_GE(std::chrono::steady_clock::now() - begun, patience / 2);
    bus.process().sendSignal(SIGCONT);
}

TEST_F(CheckingABus, IsNotHeardOfAfterItsEnd)
{
    check(bus.address());
    checking.reset();
    runLoopFor(2 * patience);
    EXPECT_EQ(heard, std::nullopt);
}

} // namespace
