#include "Applications/FarviewStatusItem/ClassicTray.h"

#include "Applications/FarviewStatusItem/MenuLayout.h"
#include "Applications/FarviewStatusItem/TrayIcons.h"
#include "Controls/Qt/Text/PlainText.h"

#include <QCursor>
#include <QGuiApplication>

namespace farview
{
namespace
{

void addEntry(QMenu& menu, const std::shared_ptr<MenuItem>& item)
{
    auto* action = menu.addAction(plainMenuText(item->title));
    action->setEnabled(item->canBeChosen());
    action->setCheckable(item->state == 1);
    action->setChecked(item->state == 1);
    QObject::connect(action, &QAction::triggered, &menu, [item] { choose(item); });
}

void fill(QMenu& menu, const Menu& entries)
{
    menu.clear();
    qDeleteAll(menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    for (const auto& item : entries.items()) {
        if (isSeparator(*item))
            menu.addSeparator();
        else if (item->submenu)
            fill(*menu.addMenu(plainMenuText(item->title)), *item->submenu);
        else
            addEntry(menu, item);
    }
}

} // namespace

ClassicTray::ClassicTray(const StatusItemDisplay& display)
{
    // An open menu stays as it is; it is made anew whenever it opens.
    QObject::connect(&mMenu, &QMenu::aboutToShow, &mMenu, [this] { fill(mMenu, *mDisplay.menu); });
    QObject::connect(&mIcon, &QSystemTrayIcon::activated, &mMenu,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             mMenu.popup(QCursor::pos());
                     });
    mIcon.setContextMenu(&mMenu);
    show(display);
    mIcon.show();
}

bool ClassicTray::isPossible() { return QGuiApplication::platformName() == QStringLiteral("xcb"); }

bool ClassicTray::isThere() { return isPossible() && QSystemTrayIcon::isSystemTrayAvailable(); }

void ClassicTray::show(const StatusItemDisplay& display)
{
    const bool sameIcon = !mIcon.icon().isNull() && display.icon == mDisplay.icon;
    mDisplay = display;
    if (!sameIcon)
        mIcon.setIcon(iconFor(display.icon));
    mIcon.setToolTip(plainToolTip(display.headline + "\n" + display.sentence));
}

} // namespace farview
