// What a device's user does with the picture, as any device may send it.
#include "Applications/ScreenCapture/InputReceiver.h"
#include "Link/Wire/LinkCodec.h"
#include "Tests/Fuzz/Expect.h"

#include <set>

namespace
{

using namespace farview;

constexpr MonitorPlace monitor{{-640, 120, 640, 480}, 1280, 960};

/// Expects that nothing lands elsewhere, and knows what is down.
class WatchfulSink final : public InputSink
{
public:
    explicit WatchfulSink(bool hasTouch) : mHasTouch(hasTouch) {}
    ~WatchfulSink() override
    {
        expect(mDown.empty() && mKeys.empty() && mFingers.empty(), "all is lifted in the end");
    }

    InputAbilities abilities() const override { return {true, mHasTouch, mHasTouch, true}; }
    void movePointer(const InputPlace& place) override { expectInside(place); }
    void button(PointerButton button, bool isDown) override { follow(mDown, button, isDown); }
    void wheel(double, double) override {}
    void touch(const TouchPoint& point) override
    {
        expectInside(point.place);
        expect(point.pressure >= 0 && point.pressure <= 1, "a pressure is a share");
        if (point.phase == TouchPhase::motion)
            expect(mFingers.contains(point.finger), "what moves is down");
        else
            follow(mFingers, point.finger, point.phase == TouchPhase::down);
    }
    void pen(const PenState& state) override { expectInside(state.place); }
    void key(std::uint16_t code, bool isDown) override { follow(mKeys, code, isDown); }
    void text(const std::string& text) override { expect(!text.empty(), "a text says something"); }

private:
    static void expectInside(const InputPlace& place)
    {
        const auto& area = monitor.area;
        expect(place.x >= 0 && place.x < monitor.width && place.y >= 0 && place.y < monitor.height,
               "a place is on the monitor");
        expect(place.desktopX >= area.x && place.desktopX < area.x + area.width &&
                   place.desktopY >= area.y && place.desktopY < area.y + area.height,
               "on no other screen");
    }
    template <typename Thing> static void follow(std::set<Thing>& down, Thing thing, bool isDown)
    {
        expect(isDown ? down.insert(thing).second : down.erase(thing) == 1,
               "what goes down was up, and the reverse");
    }

    bool mHasTouch;
    std::set<PointerButton> mDown;
    std::set<std::uint16_t> mKeys;
    std::set<int> mFingers;
};

} // namespace

/// The first byte says what the monitor can, and what is allowed; then come frames.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    WatchfulSink sink((bytes[0] & 1U) != 0);
    InputReceiver receiver(sink, [] { return Duration(0); });
    receiver.setMonitor(monitor);
    receiver.setRights({true, (bytes[0] & 2U) != 0});
    ByteView rest(bytes + 1, size - 1);
    for (auto frame = decodeFrame(rest); frame.status == DecodeStatus::complete;
         frame = decodeFrame(rest)) {
        receiver.take(frame.value);
        rest = rest.subspan(frame.consumed);
    }
    return 0;
}
