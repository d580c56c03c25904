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
           left.canBeChosen() == right.canBeChosen();
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
    for (const auto& item : menu.items())
        mRows.push_back({idFor(*item, earlier), item});
    const bool same =
        std::equal(mRows.begin(), mRows.end(), before.begin(), before.end(),
                   [](const Row& left, const Row& right) {
                       return left.id == right.id && looksSame(*left.item, *right.item);
                   });
    if (!same)
        ++mRevision;
    return !same;
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

std::shared_ptr<MenuItem> MenuLayout::item(int id) const
{
    const auto found =
        std::find_if(mRows.begin(), mRows.end(), [id](const Row& row) { return row.id == id; });
    return found == mRows.end() ? nullptr : found->item;
}

bool MenuLayout::choose(int id) const { return farview::choose(item(id)); }

} // namespace farview
