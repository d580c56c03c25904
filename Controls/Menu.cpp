#include "Controls/Menu.h"

#include <algorithm>

namespace farview
{

bool representsSame(const Represented& left, const Represented& right)
{
    const auto* leftObject = std::get_if<std::shared_ptr<Object>>(&left);
    const auto* rightObject = std::get_if<std::shared_ptr<Object>>(&right);
    if (leftObject && rightObject)
        return *leftObject && *rightObject && (*leftObject)->isEqual(**rightObject);
    const auto* leftText = std::get_if<std::string>(&left);
    const auto* rightText = std::get_if<std::string>(&right);
    if (leftText && rightText)
        return *leftText == *rightText;
    return left.index() == 0 && right.index() == 0;
}

bool MenuItem::canBeChosen() const
{
    const auto responder = target.lock();
    return responder && !action.isEmpty() && responder->respondsTo(action);
}

void Menu::insertItem(std::shared_ptr<MenuItem> item, int index)
{
    const int place = std::clamp(index, 0, numberOfItems());
    mItems.insert(mItems.begin() + place, std::move(item));
}

std::shared_ptr<MenuItem> Menu::itemAtIndex(int index) const
{
    if (index < 0 || index >= numberOfItems())
        return nullptr;
    return mItems[static_cast<std::size_t>(index)];
}

void PopUpButton::setMenu(std::shared_ptr<const Menu> menu)
{
    mMenu = menu ? std::move(menu) : std::make_shared<Menu>();
    mSelected = mMenu->numberOfItems() > 0 ? 0 : -1;
    mTitle = mSelected == 0 ? mMenu->itemAtIndex(0)->title : std::string{};
    changed(Change::menu);
}

int PopUpButton::indexOfItemWithRepresentedObject(const Represented& object) const
{
    const auto& items = mMenu->items();
    const auto found = std::find_if(items.begin(), items.end(), [&](const auto& item) {
        return representsSame(item->representedObject, object);
    });
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

int PopUpButton::indexOfItemWithTag(int tag) const
{
    const auto& items = mMenu->items();
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto& item) { return item->tag == tag; });
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

std::shared_ptr<MenuItem> PopUpButton::itemAtIndex(int index) const
{
    return mMenu->itemAtIndex(index);
}

void PopUpButton::selectItemAtIndex(int index)
{
    const auto item = itemAtIndex(index);
    if (!item)
        return;
    mSelected = index;
    mTitle = item->title;
    changed(Change::menu);
}

void PopUpButton::choose(const std::shared_ptr<MenuItem>& item)
{
    if (!isEnabled() || !item || !item->canBeChosen())
        return;
    const auto self = shared_from_this();
    const auto target = item->target.lock();
    const auto& items = mMenu->items();
    const auto place = std::find(items.begin(), items.end(), item);
    if (place != items.end())
        selectItemAtIndex(static_cast<int>(place - items.begin()));
    target->perform(item->action, item.get());
}

} // namespace farview
