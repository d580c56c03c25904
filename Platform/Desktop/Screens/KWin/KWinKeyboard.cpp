#include "Platform/Desktop/Screens/KWin/KWinKeyboard.h"

#include "Platform/Posix/FileDescriptor.h"

#include <sys/mman.h>
#include <wayland-client.h>

namespace farview
{
namespace
{

constexpr auto ignore = [](auto...) {};

const QString layouts = QStringLiteral("org.kde.KeyboardLayouts");
const QString path = QStringLiteral("/Layouts");

/// Larger than any keymap.
constexpr std::uint32_t longestKeymap = 1 << 20;

} // namespace

KWinKeyboard::KWinKeyboard(WaylandConnection& connection, SessionBus& bus)
    : mContext(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
    if (const auto* seat = connection.find(wl_seat_interface))
        mSeat.reset(connection.bind<wl_seat>(*seat, wl_seat_interface, 1));
    if (mSeat)
        followSeat();
    followLayout(bus);
}

KWinKeyboard::~KWinKeyboard() = default;

/// Its service may be missing: then there is one layout.
void KWinKeyboard::followLayout(SessionBus& bus)
{
    bus.askForOwner(QStringLiteral("org.kde.keyboard"), this, [this, &bus](const QString& owner) {
        if (owner.isEmpty())
            return;
        mOwner = owner;
        auto connection = bus.connection();
        connection.connect(mOwner, path, layouts, QStringLiteral("layoutChanged"), this,
                           SLOT(useLayout(uint)));
        bus.ask(QDBusMessage::createMethodCall(mOwner, path, layouts, QStringLiteral("getLayout")),
                this, [this](const QDBusMessage& reply) {
                    if (reply.signature() == u"u")
                        useLayout(reply.arguments().at(0).toUInt());
                });
    });
}

void KWinKeyboard::followSeat()
{
    static constexpr wl_seat_listener events{
        .capabilities =
            [](void* data, wl_seat*, std::uint32_t capabilities) {
                auto& self = *static_cast<KWinKeyboard*>(data);
                if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0 && !self.mKeyboard)
                    self.followKeyboard();
            },
        .name = ignore};
    wl_seat_add_listener(mSeat.get(), &events, this);
}

void KWinKeyboard::followKeyboard()
{
    static constexpr wl_keyboard_listener events{
        .keymap =
            [](void* data, wl_keyboard*, std::uint32_t, int descriptor, std::uint32_t size) {
                static_cast<KWinKeyboard*>(data)->useKeymap(descriptor, size);
            },
        .enter = ignore,
        .leave = ignore,
        .key = ignore,
        .modifiers = ignore,
        .repeat_info = ignore};
    mKeyboard.reset(wl_seat_get_keyboard(mSeat.get()));
    wl_keyboard_add_listener(mKeyboard.get(), &events, this);
}

void KWinKeyboard::useKeymap(int descriptor, std::uint32_t size)
{
    const FileDescriptor file(descriptor);
    if (!mContext || size == 0 || size > longestKeymap)
        return;
    void* text = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (text == MAP_FAILED)
        return;
    mKeymap.reset(xkb_keymap_new_from_buffer(mContext.get(), static_cast<const char*>(text),
                                             size - 1, XKB_KEYMAP_FORMAT_TEXT_V1,
                                             XKB_KEYMAP_COMPILE_NO_FLAGS));
    ::munmap(text, size);
}

void KWinKeyboard::useLayout(unsigned layout) { mLayout = layout; }

std::optional<KeyStroke> KWinKeyboard::strokeFor(char32_t character) const
{
    if (!mKeymap)
        return std::nullopt;
    const KeyboardState state(xkb_state_new(mKeymap.get()));
    xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, mLayout);
    return keyStroke(*state, character);
}

} // namespace farview
