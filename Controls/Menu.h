#pragma once

#include "Controls/Control.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace farview
{

/// What a menu entry stands for: nothing, a text, or an object.
using Represented = std::variant<std::monostate, std::string, std::shared_ptr<Object>>;

/// Texts are equal by value, objects by their own `isEqual`. Nothing equals nothing.
bool representsSame(const Represented& left, const Represented& right);

class Menu;

/// One entry of a menu. Made by a builder, given to a menu, changed by nobody else but who shows
/// it.
class MenuItem : public Object
{
public:
    std::string title; ///< foreign text where it names a device
    std::string note;  ///< stands beside the title, for the eye: empty for most
    Selector action;
    std::weak_ptr<Responder> target;
    bool enabled = true; ///< what the builder set; see `canBeChosen`
    int state = 0;       ///< 1: check mark
    int tag = 0;
    Represented representedObject;
    std::shared_ptr<const Menu> submenu; ///< opens beside it; null for most

    /// Menus enable themselves: an entry can be chosen exactly when it has a target that answers
    /// its action. Asked when the menu opens, and again when the entry is chosen.
    bool canBeChosen() const;
};

/// A list of entries, in order.
class Menu : public Object
{
public:
    void insertItem(std::shared_ptr<MenuItem> item, int index);
    int numberOfItems() const { return static_cast<int>(mItems.size()); }
    /// Null when there is no such entry.
    std::shared_ptr<MenuItem> itemAtIndex(int index) const;
    const std::vector<std::shared_ptr<MenuItem>>& items() const { return mItems; }

private:
    std::vector<std::shared_ptr<MenuItem>> mItems;
};

/// A button that shows the selected entry of its menu and opens it when pressed.
class PopUpButton : public Control
{
public:
    std::shared_ptr<const Menu> menu() const { return mMenu; }
    /// Replaces the menu and selects its first entry.
    void setMenu(std::shared_ptr<const Menu> menu);

    /// -1 when there is none.
    int indexOfItemWithRepresentedObject(const Represented& object) const;
    int indexOfItemWithTag(int tag) const;
    std::shared_ptr<MenuItem> itemAtIndex(int index) const;

    int indexOfSelectedItem() const { return mSelected; }
    std::shared_ptr<MenuItem> selectedItem() const { return itemAtIndex(mSelected); }
    /// Selects the entry and shows its title; an index outside the menu changes nothing.
    void selectItemAtIndex(int index);

    /// The title on show: the selected entry's, or the one that was set since.
    const std::string& title() const { return mTitle; }
    /// Shows this title; menu and selection stay.
    void setTitle(std::string title) { update(mTitle, std::move(title)); }

    /// The user's door: selects the entry and sends its action with the entry as sender. Does
    /// nothing when the button is disabled or the entry cannot be chosen (any more).
    void choose(const std::shared_ptr<MenuItem>& item);

    /// An entry of the installed menu was changed in place.
    void itemChanged() { changed(Change::menu); }

private:
    std::shared_ptr<const Menu> mMenu = std::make_shared<Menu>();
    int mSelected = -1;
    std::string mTitle;
};

} // namespace farview
