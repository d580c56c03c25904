#include "Applications/FarviewStatusItem/MenuLayout.h"

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

/// Entries that stand for nothing in particular are told apart by their text.
bool standsForSame(const MenuItem& left, const MenuItem& right)
{
    const bool nothing =
        left.representedObject.index() == 0 && right.representedObject.index() == 0;
    return left.action == right.action &&
           (nothing ? left.title == right.title
                    : representsSame(left.representedObject, right.representedObject));
}

} // namespace

bool looksSame(const MenuItem& left, const MenuItem& right)
{
    return left.title == right.title && left.state == right.state &&
           left.canBeChosen() == right.canBeChosen() && !left.submenu == !right.submenu;
}

bool choose(const std::shared_ptr<MenuItem>& item)
{
    const auto target = item && item->canBeChosen() ? item->target.lock() : nullptr;
    return target && target->perform(item->action, item.get());
}

bool MenuLayout::setMenu(const Menu& menu)
{
    auto earlier = std::exchange(mRows, {});
    const auto before = earlier;
    addRows(menu, rootId, earlier);
    const bool same = std::equal(mRows.begin(), mRows.end(), before.begin(), before.end(),
                                 [](const Row& left, const Row& right) {
                                     return left.id == right.id && left.parent == right.parent &&
                                            looksSame(*left.item, *right.item);
                                 });
    if (!same)
        ++mRevision;
    return !same;
}

void MenuLayout::addRows(const Menu& menu, int parent, std::vector<Row>& earlier)
{
    for (const auto& item : menu.items()) {
        const int id = idFor(*item, earlier);
        mRows.push_back({id, parent, item});
        if (item->submenu)
            addRows(*item->submenu, id, earlier);
    }
}

/// The number of the earlier entry that stands for the same, which is then spent, or a new one.
int MenuLayout::idFor(const MenuItem& item, std::vector<Row>& earlier)
{
    const auto found = std::find_if(earlier.begin(), earlier.end(),
                                    [&](const Row& row) { return standsForSame(*row.item, item); });
    if (found == earlier.end())
        return ++mLastId;
    const int id = found->id;
    earlier.erase(found);
    return id;
}

const MenuLayout::Row* MenuLayout::row(int id) const
{
    const auto found =
        std::find_if(mRows.begin(), mRows.end(), [id](const Row& row) { return row.id == id; });
    return found == mRows.end() ? nullptr : &*found;
}

bool MenuLayout::choose(int id) const
{
    const auto* found = row(id);
    // The entry outlives what its choice does to the menu.
    return found && farview::choose(std::shared_ptr(found->item));
}

} // namespace farview
