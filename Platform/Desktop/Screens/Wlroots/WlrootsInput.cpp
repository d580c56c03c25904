#include "Platform/Desktop/Screens/Wlroots/WlrootsInput.h"

#include "Platform/Posix/FileDescriptor.h"

#include <QString>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <wayland-client.h>
#include <wayland-protocols/wlr-virtual-input.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace farview
{
namespace
{

/// As programs count it that know no notches.
constexpr double wheelNotch = 15;
/// What programs scroll like one notch where there are only parts of them.
constexpr double smoothNotch = 10;
/// Places are told in whole numbers.
constexpr double partsOfAPixel = 256;
constexpr std::uint32_t longestKeymap = 1 << 20;
/// That a compositor may have to catch up with.
constexpr std::size_t longestText = 1 << 16;

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

/// Empty when it cannot be read.
std::string textIn(int file, std::uint32_t size)
{
    std::string text(std::min(size, longestKeymap), '\0');
    const auto count = ::pread(file, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text.substr(0, text.find('\0'));
}

} // namespace

const wl_seat_listener& WlrootsInput::seatEvents()
{
    static constexpr wl_seat_listener events{
        .capabilities =
            [](void* data, wl_seat*, std::uint32_t capabilities) {
                static_cast<WlrootsInput*>(data)->useCapabilities(capabilities);
            },
        .name = [](void*, wl_seat*, const char*) {},
    };
    return events;
}

const wl_keyboard_listener& WlrootsInput::keyboardEvents()
{
    static constexpr wl_keyboard_listener events{
        .keymap =
            [](void* data, wl_keyboard*, std::uint32_t format, int file, std::uint32_t size) {
                static_cast<WlrootsInput*>(data)->useKeymap(format, file, size);
            },
        .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
        .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
        .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                  std::uint32_t) {},
        .modifiers = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                        std::uint32_t, std::uint32_t) {},
        .repeat_info = [](void*, wl_keyboard*, int, int) {},
    };
    return events;
}

void WlrootsInput::begin(WaylandConnection& connection, wl_output* output)
{
    const auto* seat = connection.find(wl_seat_interface);
    if (!seat)
        return;
    mConnection = &connection;
    mOutput = output;
    mSeat = connection.bind<wl_seat>(*seat, wl_seat_interface, 5);
    wl_seat_add_listener(mSeat, &seatEvents(), this);
    mDrained = connection.drained().add([this] { catchUp(); });
}

/// Keyboards of ours would hide which layout the user's has.
void WlrootsInput::useCapabilities(std::uint32_t capabilities)
{
    if (mKeys || mPointer)
        return;
    if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0) {
        mUsersKeyboard = wl_seat_get_keyboard(mSeat);
        wl_keyboard_add_listener(mUsersKeyboard, &keyboardEvents(), this);
    }
    makePointer();
    makeKeyboards();
}

void WlrootsInput::makePointer()
{
    const auto* global = mConnection->find(zwlr_virtual_pointer_manager_v1_interface);
    if (!global || global->version < 2)
        return;
    auto* manager = mConnection->bind<zwlr_virtual_pointer_manager_v1>(
        *global, zwlr_virtual_pointer_manager_v1_interface, 2);
    mPointer =
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer_with_output(manager, mSeat, mOutput);
    zwlr_virtual_pointer_manager_v1_destroy(manager);
}

void WlrootsInput::makeKeyboards()
{
    const auto* global = mConnection->find(zwp_virtual_keyboard_manager_v1_interface);
    if (!global)
        return;
    auto* manager = mConnection->bind<zwp_virtual_keyboard_manager_v1>(
        *global, zwp_virtual_keyboard_manager_v1_interface, 1);
    mKeys = std::make_unique<VirtualKeyboard>(manager, mSeat);
    mKeys->setKeymap({});
    mText = std::make_unique<VirtualKeyboard>(manager, mSeat);
    // Not the layout that it may get by itself.
    learn(std::u32string(1, U' '));
    zwp_virtual_keyboard_manager_v1_destroy(manager);
}

/// The first is the user's; later ones may be ours.
void WlrootsInput::useKeymap(std::uint32_t format, int file, std::uint32_t size)
{
    const FileDescriptor closing(file);
    if (mKeys && format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
        mKeys->setKeymap(textIn(file, size));
    wl_keyboard_release(std::exchange(mUsersKeyboard, nullptr));
}

void WlrootsInput::end()
{
    if (!mSeat)
        return;
    releaseAll();
    mDrained.end();
    mMonitor.reset();
    mToType.clear();
    mKeys.reset();
    mText.reset();
    if (mPointer)
        zwlr_virtual_pointer_v1_destroy(std::exchange(mPointer, nullptr));
    if (mUsersKeyboard)
        wl_keyboard_release(std::exchange(mUsersKeyboard, nullptr));
    wl_seat_release(std::exchange(mSeat, nullptr));
    mConnection->flush();
}

InputAbilities WlrootsInput::abilities() const
{
    return {
        .pointer = mPointer && mMonitor, .touch = false, .pen = false, .keys = mKeys && mMonitor};
}

/// A compositor that stands still gets nothing more, else it would count as lost.
bool WlrootsInput::mayUse(const void* device)
{
    if (!device || !mMonitor)
        return false;
    mConnection->flush();
    mHasLost = mHasLost || mConnection->isFull();
    return !mConnection->isFull();
}

/// Of what it did not take, only the last place of the pointer counts, and text.
void WlrootsInput::catchUp()
{
    if (std::exchange(mHasLost, false))
        releaseAll();
    if (const auto place = std::exchange(mSkipped, std::nullopt))
        movePointer(*place);
    typeWhatWaits();
}

void WlrootsInput::releaseAll()
{
    for (const auto button : std::exchange(mButtons, {}))
        zwlr_virtual_pointer_v1_button(mPointer, inputTime(), button,
                                       WL_POINTER_BUTTON_STATE_RELEASED);
    if (mPointer)
        zwlr_virtual_pointer_v1_frame(mPointer);
    if (mKeys)
        mKeys->releaseAll();
}

void WlrootsInput::movePointer(const InputPlace& place)
{
    const auto isWithin = [](double at, int end) { return at >= 0 && at < end; };
    if (!mPointer || !mMonitor || !isWithin(place.x, mMonitor->width) ||
        !isWithin(place.y, mMonitor->height))
        return;
    mConnection->flush();
    if (mConnection->isFull()) {
        mSkipped = place;
        return;
    }
    const auto parts = [](double value) {
        return static_cast<std::uint32_t>(std::lround(value * partsOfAPixel));
    };
    zwlr_virtual_pointer_v1_motion_absolute(mPointer, inputTime(), parts(place.x), parts(place.y),
                                            parts(mMonitor->width), parts(mMonitor->height));
    zwlr_virtual_pointer_v1_frame(mPointer);
}

void WlrootsInput::button(PointerButton button, bool isDown)
{
    const auto code = codeOf(button);
    if (!mayUse(mPointer))
        return;
    const bool isNews = isDown ? mButtons.insert(code).second : mButtons.erase(code) > 0;
    if (!isNews)
        return;
    zwlr_virtual_pointer_v1_button(mPointer, inputTime(), code, isDown ? 1 : 0);
    zwlr_virtual_pointer_v1_frame(mPointer);
}

void WlrootsInput::wheel(double right, double down)
{
    if (!mayUse(mPointer))
        return;
    turn(WL_POINTER_AXIS_HORIZONTAL_SCROLL, right);
    turn(WL_POINTER_AXIS_VERTICAL_SCROLL, down);
}

/// Some programs know whole notches only.
void WlrootsInput::turn(std::uint32_t axis, double notches)
{
    if (notches == 0 || !(std::abs(notches) < 1000))
        return;
    const bool isWhole = notches == std::trunc(notches);
    zwlr_virtual_pointer_v1_axis_source(mPointer, isWhole ? WL_POINTER_AXIS_SOURCE_WHEEL
                                                          : WL_POINTER_AXIS_SOURCE_CONTINUOUS);
    if (isWhole)
        zwlr_virtual_pointer_v1_axis_discrete(mPointer, inputTime(), axis,
                                              wl_fixed_from_double(notches * wheelNotch),
                                              static_cast<int>(notches));
    else
        zwlr_virtual_pointer_v1_axis(mPointer, inputTime(), axis,
                                     wl_fixed_from_double(notches * smoothNotch));
    zwlr_virtual_pointer_v1_frame(mPointer);
}

void WlrootsInput::key(std::uint16_t code, bool isDown)
{
    if (mayUse(mKeys.get()))
        mKeys->key(code, isDown);
}

void WlrootsInput::text(const std::string& text)
{
    if (!mText || !mMonitor)
        return;
    auto characters = QString::fromStdString(text).toStdU32String();
    std::replace(characters.begin(), characters.end(), U'\n', U'\r');
    if (mToType.size() + characters.size() > longestText)
        return;
    mToType += characters;
    learn(mToType);
    typeWhatWaits();
}

void WlrootsInput::typeWhatWaits()
{
    std::size_t count = 0;
    for (; count < mToType.size() && !mConnection->isFull(); ++count) {
        type(mToType[count]);
        mConnection->flush();
    }
    mToType.erase(0, count);
}

/// One keymap for all of them, where it has room.
void WlrootsInput::learn(const std::u32string& characters)
{
    auto all = mCharacters;
    for (const auto character : characters) {
        if (all.find(character) == std::u32string::npos && all.size() < mostCharacterKeys)
            all += character;
    }
    if (all.size() > mCharacters.size())
        mText->setKeymap(keymapFor(all));
    mCharacters = std::move(all);
}

void WlrootsInput::type(char32_t character)
{
    if (mCharacters.find(character) == std::u32string::npos) {
        mCharacters.clear();
        learn(std::u32string(1, character));
    }
    const auto place = mCharacters.find(character);
    const auto code = static_cast<std::uint16_t>(place + firstCharacterKey);
    mText->key(code, true);
    mText->key(code, false);
}

} // namespace farview
