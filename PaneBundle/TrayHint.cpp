#include "PaneBundle/TrayHint.h"

#include <QSystemTrayIcon>

#include <utility>

namespace farview
{

TrayHint::TrayHint(SessionBus& bus, std::weak_ptr<Button> checkBox, std::string text)
    : mCheckBox(std::move(checkBox)), mText(std::move(text)),
      mWatcher(bus, "org.kde.StatusNotifierWatcher", [this](bool isThere) {
          // The toolkit, which knows the classic trays, is asked only where it matters.
          const bool hasTray = isThere || QSystemTrayIcon::isSystemTrayAvailable();
          if (const auto box = mCheckBox.lock())
              box->setToolTip(hasTray ? std::string() : mText);
      })
{
}

} // namespace farview
