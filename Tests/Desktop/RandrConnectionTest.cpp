#include "Platform/Desktop/Screens/X11/RandrConnection.h"

#include "Platform/Desktop/Screens/X11/RandrDisplays.h"
#include "Tests/Desktop/ScriptedXServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace farview
{
namespace
{

using Bytes = ScriptedXServer::Bytes;
using Request = ScriptedXServer::Request;
using Names = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

// Every request that reading and changing a layout takes.
const std::vector<std::string> everyRequest = {
    "QueryExtension",   "QueryVersion", "GetGeometry",   "GetScreenSizeRange",
    "GetOutputPrimary", "GetCrtcInfo",  "GetOutputInfo", "GetScreenResourcesCurrent",
    "SetCrtcConfig"};

/// Ends the mirroring of the first output, patiently or not.
DisplayConfiguration::Error turnOff(RandrConnection::Limit limit = std::chrono::seconds(20))
{
    RandrDisplays displays(limit);
    DisplayConfiguration::Transaction transaction = 0;
    displays.beginConfiguration(transaction);
    displays.configureMirrorOfDisplay(transaction, displays.mainDisplay(), 0);
    return displays.completeConfiguration(transaction, 1);
}

Names changesIn(const Names& requests)
{
    Names changes;
    for (const auto& name : requests) {
        if (name.starts_with("Set"))
            changes.push_back(name);
    }
    return changes;
}

/// That request is answered with something else.
ScriptedXServer::Script insteadOf(const std::string& name,
                                  std::function<Bytes(const Request&, Bytes)> answer)
{
    return [=](const Request& request, const Bytes& decent) -> std::optional<Bytes> {
        return request.is(name) ? std::optional(answer(request, decent)) : std::nullopt;
    };
}

TEST(RandrConnection, ADecentServerIsRearranged)
{
    ScriptedXServer server({0, 0, 0});
    EXPECT_EQ(turnOff(), 0);
    EXPECT_EQ(changesIn(server.requests()),
              (Names{"SetScreenSize 300 50", "SetCrtcConfig 1 100 0", "SetCrtcConfig 2 200 0"}));
    EXPECT_THAT(server.requests(), testing::Contains("GrabServer").Times(1));
}

TEST(RandrConnection, AChangeThatIsRefusedHalfWayIsUndone)
{
    ScriptedXServer server({0, 0, 0});
    server.setScript(insteadOf("SetCrtcConfig 2 200", [](const Request&, Bytes decent) {
        decent[1] = 3;
        return decent;
    }));
    EXPECT_EQ(turnOff(), DisplayConfiguration::cannotComplete);
    EXPECT_EQ(changesIn(server.requests()),
              (Names{"SetScreenSize 300 50", "SetCrtcConfig 1 100 0", "SetCrtcConfig 2 200 0",
                     "SetCrtcConfig 2 0 0", "SetCrtcConfig 1 0 0", "SetScreenSize 100 50"}));
}

TEST(RandrConnection, AScreenThatCannotGrowStaysAsItIs)
{
    ScriptedXServer server({0, 0});
    server.setScript(insteadOf("SetScreenSize 200", [](const Request& request, const Bytes&) {
        return ScriptedXServer::refusal(request);
    }));
    EXPECT_EQ(turnOff(), DisplayConfiguration::cannotComplete);
    EXPECT_THAT(server.requests(), testing::Not(testing::Contains(testing::StartsWith("SetCrtc"))));
}

TEST(RandrConnection, AScreenThatWouldBeTooLargeIsNotAskedFor)
{
    ScriptedXServer server(std::vector<int>(11, 0));
    EXPECT_EQ(turnOff(), DisplayConfiguration::rangeCheck);
    EXPECT_TRUE(changesIn(server.requests()).empty());
}

class AnyRequest : public testing::TestWithParam<std::string>
{
protected:
    ScriptedXServer server{{0, 0}};
};

INSTANTIATE_TEST_SUITE_P(Of, AnyRequest, testing::ValuesIn(everyRequest),
                         [](const auto& info) { return info.param; });

TEST_P(AnyRequest, MayGoWrong)
{
    const std::pair<const char*, std::function<Bytes(const Request&, Bytes)>> troubles[] = {
        {"a refusal",
         [](const Request& request, Bytes) { return ScriptedXServer::refusal(request); }},
        {"death", [](const Request&, Bytes) { return ScriptedXServer::hangUp(); }},
        {"silence", [](const Request&, Bytes) { return Bytes{}; }},
        {"half an answer",
         [](const Request&, Bytes decent) {
             decent.resize(decent.size() / 2);
             return decent;
         }},
        {"events for ever", [](const Request&, Bytes) {
             Bytes events(32 * 1000);
             for (std::size_t each = 0; each < events.size(); each += 32)
                 events[each] = 2;
             return events;
         }}};
    for (const auto& [name, answer] : troubles) {
        server.setScript(insteadOf(GetParam(), answer));
        const auto begin = Clock::now();
        EXPECT_NE(turnOff(std::chrono::milliseconds(200)), 0) << name;
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5)) << name;
    }
}

TEST_P(AnyRequest, MayBeAnsweredWithAnything)
{
    // Sequence number and length stay, so that the answer is taken for one.
    // The server may still answer when the test is over.
    const auto random = std::make_shared<std::mt19937>(1);
    for (int round = 0; round < 20; ++round) {
        server.setScript(insteadOf(GetParam(), [random](const Request&, Bytes decent) {
            for (std::size_t place = 8; place < decent.size(); ++place)
                decent[place] = static_cast<std::uint8_t>((*random)());
            return decent;
        }));
        turnOff(std::chrono::milliseconds(200));
    }
}

/// Answers whose counts promise more than they hold.
struct Lie {
    std::string request;
    std::size_t place;
    std::uint32_t value;
};

class LyingServer : public testing::TestWithParam<Lie>
{
};

INSTANTIATE_TEST_SUITE_P(Promises, LyingServer,
                         testing::Values(Lie{"GetScreenResourcesCurrent", 16, 3}, // crtcs
                                         Lie{"GetScreenResourcesCurrent", 16, 65535},
                                         Lie{"GetScreenResourcesCurrent", 18, 250}, // outputs
                                         Lie{"GetScreenResourcesCurrent", 18, 65535},
                                         Lie{"GetScreenResourcesCurrent", 20, 65535}, // modes
                                         Lie{"GetCrtcInfo", 28, 2}, Lie{"GetCrtcInfo", 28, 65535},
                                         Lie{"GetOutputInfo", 26, 65535}, // crtcs
                                         Lie{"GetOutputInfo", 28, 9},     // modes
                                         Lie{"GetOutputInfo", 28, 65535}));

TEST_P(LyingServer, IsNotBelieved)
{
    const Lie lie = GetParam();
    ScriptedXServer server({0, 0});
    server.setScript(insteadOf(lie.request, [lie](const Request&, Bytes decent) {
        ScriptedXServer::put(decent, lie.place, lie.value, 2);
        return decent;
    }));
    EXPECT_EQ(turnOff(), DisplayConfiguration::invalidConnection);
    EXPECT_TRUE(changesIn(server.requests()).empty());
}

TEST(RandrConnection, AServerWithoutRandrOrWithAnOldOneCannotTell)
{
    ScriptedXServer server;
    server.setScript(insteadOf("QueryExtension", [](const Request&, Bytes decent) {
        decent[8] = 0;
        return decent;
    }));
    EXPECT_EQ(turnOff(), DisplayConfiguration::invalidConnection);
    server.setScript(insteadOf("QueryVersion", [](const Request&, Bytes decent) {
        ScriptedXServer::put(decent, 12, 2, 4);
        return decent;
    }));
    EXPECT_EQ(turnOff(), DisplayConfiguration::invalidConnection);
}

class StrangeSetup : public testing::TestWithParam<Bytes>
{
};

Bytes setupWith(std::size_t place, std::uint32_t value, std::size_t size)
{
    auto setup = ScriptedXServer::decentSetup();
    ScriptedXServer::put(setup, place, value, size);
    return setup;
}

INSTANTIATE_TEST_SUITE_P(Kinds, StrangeSetup,
                         testing::Values(ScriptedXServer::hangUp(), Bytes{}, Bytes(7, 1),
                                         Bytes(8, 0), Bytes(8, 0xFF), Bytes(100, 0xFF),
                                         setupWith(0, 0, 1), setupWith(0, 2, 1),
                                         setupWith(6, 0xFFFF, 2), setupWith(6, 0, 2), // length
                                         setupWith(24, 0xFFFF, 2), // of the vendor's name
                                         setupWith(28, 0, 1),      // screens
                                         setupWith(29, 255, 1)));  // formats

TEST_P(StrangeSetup, IsNoServer)
{
    ScriptedXServer server;
    server.setSetup(GetParam());
    const auto begin = Clock::now();
    EXPECT_EQ(turnOff(std::chrono::milliseconds(100)), DisplayConfiguration::invalidConnection);
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
}

} // namespace
} // namespace farview
