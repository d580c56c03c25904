#include "Controls/Panel.h"

namespace farview
{

void Panel::beginSheet(const std::shared_ptr<View>& view)
{
    if (mSheet)
        return;
    mParent = view;
    mSheet = true;
    mVisible = true;
    changed(Change::sheet);
}

void Panel::endSheet(int returnCode)
{
    if (!mSheet)
        return;
    mReturnCode = returnCode;
    mSheet = false;
    mParent.reset();
    changed(Change::sheet);
}

void Panel::orderOut()
{
    if (!mVisible)
        return;
    mVisible = false;
    changed(Change::sheet);
}

} // namespace farview
