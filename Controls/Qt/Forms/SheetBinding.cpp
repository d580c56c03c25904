#include "Controls/Qt/Forms/SheetBinding.h"

#include "Controls/Qt/Forms/SheetWidget.h"

namespace farview
{

SheetBinding::SheetBinding(std::shared_ptr<Panel> panel, SheetWidget* sheet)
    : Binding(panel, sheet), mPanel(std::move(panel)), mSheet(sheet)
{
}

// Being shown is the sheet's own business, not that of every control.
bool SheetBinding::isHidden() const { return mSheet->isHidden(); }

void SheetBinding::show(Change change)
{
    if (change != Change::sheet)
        return;
    if (!mPanel->isSheet()) {
        mSheet->hide();
        return;
    }
    const auto parent = mPanel->sheetParent();
    QWidget* shown = parent ? widgetShowing(*parent) : nullptr;
    mSheet->openOn(shown ? shown->window() : nullptr);
}

} // namespace farview
