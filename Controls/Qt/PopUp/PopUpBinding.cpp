#include "Controls/Qt/PopUp/PopUpBinding.h"

#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/Text/PlainText.h"

#include <algorithm>

namespace farview
{
namespace
{

bool meansTheSame(const MenuItem& left, const MenuItem& right)
{
    return left.action == right.action && left.tag == right.tag &&
           representsSame(left.representedObject, right.representedObject);
}

/// The toolkit sets what follows a tabulator apart, as it does with shortcuts.
QString menuText(const MenuItem& item)
{
    const QString title = plainMenuText(item.title);
    return item.note.empty() ? title : title + u'\t' + plainMenuText(item.note);
}

/// The entry of today's menu that the user meant with an entry of yesterday's.
std::shared_ptr<MenuItem> counterpart(const Menu& menu, const std::shared_ptr<MenuItem>& item)
{
    const auto& items = menu.items();
    if (std::find(items.begin(), items.end(), item) != items.end())
        return item;
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto& each) { return meansTheSame(*each, *item); });
    return found == items.end() ? item : *found;
}

} // namespace

PopUpBinding::PopUpBinding(std::shared_ptr<PopUpButton> button, PopUpWidget* widget)
    : Binding(button, widget), mButton(std::move(button)), mPopUp(widget)
{
    connect(widget, &PopUpWidget::openRequested, this, [this] { open(); });
}

void PopUpBinding::show(Change /*change*/) { mPopUp->setTitle(plainLine(mButton->title())); }

void PopUpBinding::open()
{
    auto* menu = new QMenu(mPopUp);
    QAction* current = nullptr;
    const auto selected = mButton->selectedItem();
    const bool someIsMarked = someEntryIsMarked();
    for (const auto& item : mButton->menu()->items()) {
        QAction* entry = addEntry(menu, item);
        const bool isMarked = someIsMarked ? item->state == 1 : item == selected;
        entry->setCheckable(isMarked);
        entry->setChecked(isMarked);
        if (item == selected)
            current = entry;
    }
    mPopUp->open(menu, current);
}

QAction* PopUpBinding::addEntry(QMenu* menu, const std::shared_ptr<MenuItem>& item)
{
    QAction* entry = menu->addAction(menuText(*item));
    entry->setEnabled(item->canBeChosen());
    connect(entry, &QAction::triggered, this, [this, item] { choose(item); });
    // Assistive technology chooses an entry without closing the menu.
    connect(entry, &QAction::triggered, menu, &QWidget::close, Qt::QueuedConnection);
    return entry;
}

// The choice in force marks its entry itself; without one the selected entry bears the mark.
bool PopUpBinding::someEntryIsMarked() const
{
    const auto& items = mButton->menu()->items();
    return std::any_of(items.begin(), items.end(),
                       [](const auto& each) { return each->state == 1; });
}

void PopUpBinding::choose(const std::shared_ptr<MenuItem>& item)
{
    userDid([&] { mButton->choose(counterpart(*mButton->menu(), item)); });
}

} // namespace farview
