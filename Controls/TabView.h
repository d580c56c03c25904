#pragma once

#include "Controls/View.h"

#include <string>
#include <vector>

namespace farview
{

/// Pages of which one shows. Pages are known by their identifiers, in the interface file's order.
class TabView : public View
{
public:
    const std::vector<std::string>& identifiers() const { return mIdentifiers; }
    /// Replaces the pages and shows the first.
    void setIdentifiers(std::vector<std::string> identifiers);

    /// Empty when there are no pages.
    const std::string& selectedIdentifier() const { return mSelected; }
    /// Shows that page; an unknown identifier changes nothing.
    void selectTabViewItemWithIdentifier(const std::string& identifier);
    void selectFirstTabViewItem(Object* sender);

private:
    std::vector<std::string> mIdentifiers;
    std::string mSelected;
};

} // namespace farview
