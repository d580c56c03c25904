#include "Benchmarks/PictureUsers.h"

#include "Common/PairedPeers.h"
#include "Link/Keys/OwnKey.h"
#include "Link/Keys/PairingProof.h"
#include "Platform/Desktop/Screens/X11/XConnection.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/Settings/FilePreferences.h"

#include <cstdlib>
#include <stdexcept>

namespace farview
{

void pairBothPrograms()
{
    FakeLog log;
    FilePreferences preferences(PreferencesLocations(EnvironmentUse::honoured), log);
    const auto own = [](const char* domain) {
        return hexadecimal(ownKey(ownKeyPath(domain)).key.value().fingerprint);
    };
    PairedPeers(preferences, PairedPeers::devices)
        .add({own(PairedPeers::computers), "Desk", {}, {}});
    PairedPeers(preferences, PairedPeers::computers).add({own(PairedPeers::devices), {}, {}, {}});
}

void chooseDevice(TestPanel& panel, const std::string& address)
{
    panel.reports.clear();
    const auto answers = [&] {
        panel.post(kQueryRequestForConnectedHost);
        return panel.last(kServerDisconnectedFromDevice) != nullptr;
    };
    if (!waitUntil(answers))
        throw std::runtime_error("the screen server does not answer");
    panel.connectToAddress(address);
}

void setBackground(const std::string& display, std::uint32_t colour)
{
    const XConnection connection(xcb_connect(display.c_str(), nullptr));
    const auto root = screenOf(connection.get())->root;
    xcb_change_window_attributes(connection.get(), root, XCB_CW_BACK_PIXEL, &colour);
    std::free(xcb_request_check(connection.get(),
                                xcb_clear_area_checked(connection.get(), 0, root, 0, 0, 0, 0)));
}

} // namespace farview
