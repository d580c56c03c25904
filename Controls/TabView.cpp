#include "Controls/TabView.h"

#include <algorithm>

namespace farview
{

void TabView::setIdentifiers(std::vector<std::string> identifiers)
{
    mIdentifiers = std::move(identifiers);
    mSelected = mIdentifiers.empty() ? std::string{} : mIdentifiers.front();
    changed(Change::properties);
}

void TabView::selectTabViewItemWithIdentifier(const std::string& identifier)
{
    if (std::find(mIdentifiers.begin(), mIdentifiers.end(), identifier) != mIdentifiers.end())
        update(mSelected, identifier);
}

void TabView::selectFirstTabViewItem(Object* /*sender*/)
{
    if (!mIdentifiers.empty())
        update(mSelected, mIdentifiers.front());
}

} // namespace farview
