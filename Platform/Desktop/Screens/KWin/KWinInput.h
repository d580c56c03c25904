#pragma once

#include "Platform/Desktop/Screens/KWin/KWinKeyboard.h"
#include "Platform/InputSink.h"
#include "Platform/VirtualScreens.h"

#include <bitset>
#include <memory>
#include <optional>
#include <set>

struct org_kde_kwin_fake_input;

namespace farview
{

/// Input for a monitor that KWin made. KWin knows no pens here, and its keys write only what the
/// keyboard layout of the moment has.
class KWinInput final : public InputSink
{
public:
    /// `firstFinger` is another one for each: KWin does not tell the fingers of one from those of
    /// another, which may be down, too.
    explicit KWinInput(std::uint32_t firstFinger) : mFirstFinger(firstFinger) {}
    ~KWinInput() override;
    KWinInput(const KWinInput&) = delete;
    KWinInput& operator=(const KWinInput&) = delete;

    /// Has KWin make its devices, so that programs know of them before they are used. Both must
    /// live longer.
    void makeDevices(WaylandConnection& connection, SessionBus& bus);
    /// The monitor is there, and like that.
    void setMonitor(const ScreenGeometry& monitor) { mMonitor = monitor; }
    /// Releases everything, and passes on nothing any more.
    void end();

    InputAbilities abilities() const override;
    void movePointer(const InputPlace& place) override;
    void button(PointerButton button, bool isDown) override;
    void wheel(double right, double down) override;
    void touch(const TouchPoint& point) override;
    void pen(const PenState&) override {}
    void key(std::uint16_t code, bool isDown) override;
    void text(const std::string& text) override;

private:
    struct Place {
        std::int32_t x = 0; ///< as the protocol has numbers
        std::int32_t y = 0;
    };

    bool isOpen() const { return mDevice && mMonitor; }
    std::optional<Place> onDesktop(const InputPlace& place) const;
    int timesTo(const Place& place) const;
    void pressButton(std::uint32_t code, bool isDown);
    void press(int finger, const InputPlace& place);
    void lift(int finger);
    void type(char32_t character);

    std::uint32_t mFirstFinger;
    ProxyPointer<org_kde_kwin_fake_input> mDevice;
    std::unique_ptr<KWinKeyboard> mKeyboard;
    std::optional<ScreenGeometry> mMonitor;
    std::bitset<16> mFingers; ///< that are down
    std::set<std::uint32_t> mButtons;
    std::set<std::uint16_t> mKeys;
};

} // namespace farview
