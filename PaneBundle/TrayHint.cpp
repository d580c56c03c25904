#include "PaneBundle/TrayHint.h"

#include <QSystemTrayIcon>

#include <utility>

namespace farview
{

TrayHint::TrayHint(SessionBus& bus, std::weak_ptr<Button> checkBox, std::string text)
    : mCheckBox(std::move(checkBox)), mText(std::move(text)), mWatcher(bus, [this](BusTray tray) {
          mBusTray = tray;
          refresh();
      })
{
}

void TrayHint::refresh()
{
    const auto box = mCheckBox.lock();
    if (!box)
        return;
    // The toolkit, which knows the classic trays, is asked only where it matters.
    const bool hasTray = mBusTray == BusTray::shown || QSystemTrayIcon::isSystemTrayAvailable();
    box->setToolTip(hasTray ? std::string() : mText);
}

} // namespace farview
