#include "Platform/Desktop/Screens/KWin/KWinInput.h"

#include "Platform/Posix/UTF8.h"

#include <wayland-client.h>
#include <wayland-protocols/fake-input.h>

#include <algorithm>
#include <linux/input-event-codes.h>
#include <ranges>
#include <string_view>
#include <utility>

namespace farview
{
namespace
{

/// From this one on it takes keys.
constexpr std::uint32_t inputVersion = 4;
/// How far KWin scrolls with one notch.
constexpr double notch = 10;
/// Between a key as the kernel counts it and as layouts do.
constexpr std::uint16_t codesBefore = 8;

std::uint32_t codeOf(PointerButton button)
{
    switch (button) {
    case PointerButton::right:
        return BTN_RIGHT;
    case PointerButton::middle:
        return BTN_MIDDLE;
    case PointerButton::back:
        return BTN_SIDE;
    case PointerButton::forward:
        return BTN_EXTRA;
    default:
        return BTN_LEFT;
    }
}

} // namespace

KWinInput::~KWinInput() = default;

void KWinInput::makeDevices(WaylandConnection& connection, SessionBus& bus)
{
    const auto* offered = connection.find(org_kde_kwin_fake_input_interface);
    if (!offered || offered->version < inputVersion)
        return;
    mDevice.reset(connection.bind<org_kde_kwin_fake_input>(
        *offered, org_kde_kwin_fake_input_interface, inputVersion));
    org_kde_kwin_fake_input_authenticate(mDevice.get(), "Farview",
                                         "What is done at a device's screen happens here");
    mKeyboard = std::make_unique<KWinKeyboard>(connection, bus);
}

void KWinInput::end()
{
    for (int finger = 0; finger < int(mFingers.size()); ++finger)
        lift(finger);
    for (const auto code : std::set(mButtons))
        pressButton(code, false);
    for (const auto code : std::set(mKeys))
        key(code, false);
    mMonitor.reset();
    mKeyboard.reset();
    mDevice.reset();
}

InputAbilities KWinInput::abilities() const
{
    const bool flag = isOpen();
    return {.pointer = flag, .touch = flag, .pen = false, .keys = flag};
}

/// Beyond the monitor's edge lie other screens.
std::optional<KWinInput::Place> KWinInput::onDesktop(const InputPlace& place) const
{
    const auto isWithin = [](double at, int end) { return at >= 0 && at < end; };
    if (!isOpen() || !isWithin(place.x, mMonitor->width) || !isWithin(place.y, mMonitor->height))
        return std::nullopt;
    const auto& area = mMonitor->area;
    return Place{wl_fixed_from_double(area.x + place.x * area.width / mMonitor->width),
                 wl_fixed_from_double(area.y + place.y * area.height / mMonitor->height)};
}

/// KWin 6 holds the pointer at the border between two screens until it was pushed that far beyond.
int KWinInput::timesTo(const Place& place) const
{
    constexpr int barrier = 100;
    const int x = wl_fixed_to_int(place.x) - mMonitor->area.x;
    const int y = wl_fixed_to_int(place.y) - mMonitor->area.y;
    const int depth = std::min({x, y, mMonitor->area.width - x, mMonitor->area.height - y});
    // The last one gets to where the first that came through fell short of.
    return 2 + barrier / std::max(1, depth);
}

void KWinInput::movePointer(const InputPlace& place)
{
    const auto at = onDesktop(place);
    for (int times = at ? timesTo(*at) : 0; times > 0; --times)
        org_kde_kwin_fake_input_pointer_motion_absolute(mDevice.get(), at->x, at->y);
}

void KWinInput::button(PointerButton button, bool isDown) { pressButton(codeOf(button), isDown); }

void KWinInput::pressButton(std::uint32_t code, bool isDown)
{
    if (!isOpen())
        return;
    org_kde_kwin_fake_input_button(mDevice.get(), code, isDown);
    if (isDown)
        mButtons.insert(code);
    else
        mButtons.erase(code);
}

void KWinInput::wheel(double right, double down)
{
    if (!isOpen())
        return;
    const auto turn = [this](wl_pointer_axis axis, double notches) {
        if (notches != 0)
            org_kde_kwin_fake_input_axis(mDevice.get(), axis,
                                         wl_fixed_from_double(notches * notch));
    };
    turn(WL_POINTER_AXIS_HORIZONTAL_SCROLL, right);
    turn(WL_POINTER_AXIS_VERTICAL_SCROLL, down);
}

void KWinInput::touch(const TouchPoint& point)
{
    if (point.finger < 0 || point.finger >= int(mFingers.size()))
        return;
    if (point.phase == TouchPhase::down) {
        press(point.finger, point.place);
    } else if (point.phase != TouchPhase::motion) {
        lift(point.finger);
    } else if (const auto at = onDesktop(point.place); at && mFingers[point.finger]) {
        org_kde_kwin_fake_input_touch_motion(mDevice.get(), mFirstFinger + point.finger, at->x,
                                             at->y);
        org_kde_kwin_fake_input_touch_frame(mDevice.get());
    }
}

void KWinInput::press(int finger, const InputPlace& place)
{
    const auto at = onDesktop(place);
    if (!at || mFingers[finger])
        return;
    mFingers.set(finger);
    org_kde_kwin_fake_input_touch_down(mDevice.get(), mFirstFinger + finger, at->x, at->y);
    org_kde_kwin_fake_input_touch_frame(mDevice.get());
}

void KWinInput::lift(int finger)
{
    if (!isOpen() || !mFingers[finger])
        return;
    mFingers.reset(finger);
    org_kde_kwin_fake_input_touch_up(mDevice.get(), mFirstFinger + finger);
    org_kde_kwin_fake_input_touch_frame(mDevice.get());
}

void KWinInput::key(std::uint16_t code, bool isDown)
{
    if (!isOpen())
        return;
    org_kde_kwin_fake_input_keyboard_key(mDevice.get(), code, isDown);
    if (isDown)
        mKeys.insert(code);
    else
        mKeys.erase(code);
}

void KWinInput::text(const std::string& text)
{
    for (std::string_view rest = text; !rest.empty();) {
        const auto [character, length] = decodeCharacter(rest);
        rest.remove_prefix(length);
        if (character)
            type(*character == U'\n' ? U'\r' : *character);
    }
}

void KWinInput::type(char32_t character)
{
    const auto stroke = mKeyboard ? mKeyboard->strokeFor(character) : std::nullopt;
    if (!stroke)
        return;
    auto codes = stroke->held;
    codes.push_back(stroke->code);
    for (const auto code : codes)
        key(code - codesBefore, true);
    for (const auto code : codes | std::views::reverse)
        key(code - codesBefore, false);
}

} // namespace farview
