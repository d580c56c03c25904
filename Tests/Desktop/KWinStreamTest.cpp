#include "Platform/Desktop/Screens/KWin/KWinStream.h"

#include "Platform/Desktop/QtRunLoop.h"
#include "Platform/Desktop/Screens/KWin/KWinInput.h"
#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivatePlasma.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>
#include <wayland-client.h>
#include <wayland-protocols/zkde-screencast-unstable-v1.h>

#include <optional>
#include <string>

namespace farview
{
namespace
{

struct Answer {
    std::optional<std::uint32_t> node;
    std::string refusal;
};

/// Without a graphics device KWin 5 shows no pixels, but everything else of an output that it has,
/// and KWin 6 nothing.
TEST(PicturesOfKWin, ComeWithThePointer)
{
    PrivatePlasma desktop(1);
    FakeLog log;
    TestBus bus{log};
    QtRunLoop loop;
    bool isReady = false;
    WaylandConnection connection({.ready = [&] { isReady = true; }, .lost = [] {}});
    ASSERT_TRUE(waitUntil([&] { return isReady; }));
    KWinInput input{0};
    input.makeDevices(connection, bus);
    input.setMonitor({pixelRect(0, 0, 1280, 720), 1280, 720});
    const ProxyPointer<wl_output> output(
        connection.bind<wl_output>(*connection.find(wl_output_interface), wl_output_interface, 1));
    const ProxyPointer<zkde_screencast_unstable_v1> maker(
        connection.bind<zkde_screencast_unstable_v1>(
            *connection.find(zkde_screencast_unstable_v1_interface),
            zkde_screencast_unstable_v1_interface, 2));
    const ProxyPointer<zkde_screencast_stream_unstable_v1> stream(
        zkde_screencast_unstable_v1_stream_output(maker.get(), output.get(),
                                                  ZKDE_SCREENCAST_UNSTABLE_V1_POINTER_METADATA));
    static const auto events = [] {
        zkde_screencast_stream_unstable_v1_listener all{};
        all.closed = [](void*, auto*) {};
        all.created = [](void* data, auto*, std::uint32_t number) {
            static_cast<Answer*>(data)->node = number;
        };
        all.failed = [](void* data, auto*, const char* reason) {
            static_cast<Answer*>(data)->refusal = reason;
        };
        return all;
    }();
    Answer answer;
    zkde_screencast_stream_unstable_v1_add_listener(stream.get(), &events, &answer);
    ASSERT_TRUE(waitUntil([&] { return answer.node || !answer.refusal.empty(); }));
    if (answer.refusal.starts_with("OpenGL"))
        GTEST_SKIP() << "KWin shows nothing here: " << answer.refusal;
    ASSERT_EQ(answer.refusal, "");
    std::optional<ScreenObstacle> end;
    PipeWireStream pictures(loop, {[] {}, [] {}, [&](auto reason) { end = reason; }});
    pictures.connect({*answer.node}, 1280, 720);
    double x = 30;
    EXPECT_TRUE(waitUntil([&] {
        input.movePointer({.x = ++x, .y = 40});
        return pictures.screen().position() && pictures.screen().position()->y == 40;
    }));
    EXPECT_FALSE(end);
}

} // namespace
} // namespace farview
