#include "Source/FVEUpdateSheetController.h"

#include "Common/Rules/FilledText.h"
#include "Common/Rules/UpdateTexts.h"
#include "Controls/OperationTable.h"
#include "Source/FVEPreferencePane.h"

#include <array>

using farview::Button;
using farview::Object;
using farview::Selector;

namespace
{

using Sheet = FVEUpdateSheetController;

constexpr int returnCodeClosed = 0;

constexpr auto operations = std::to_array<farview::Operation<Sheet>>({
    farview::action<&Sheet::firstButtonPressed, Sheet>("firstButtonPressed:"),
    farview::action<&Sheet::secondButtonPressed, Sheet>("secondButtonPressed:"),
});

constexpr auto outletTable = std::to_array<farview::Outlet>({
    farview::outlet<&Sheet::updatePanel>("updatePanel"),
    farview::outlet<&Sheet::headlineText>("headlineText"),
    farview::outlet<&Sheet::detailText>("detailText"),
    farview::outlet<&Sheet::notesArea>("notesArea"),
    farview::outlet<&Sheet::notesText>("notesText"),
    farview::outlet<&Sheet::updateProgress>("updateProgress"),
    farview::outlet<&Sheet::firstButton>("firstButton"),
    farview::outlet<&Sheet::secondButton>("secondButton"),
});

std::string inWords(const FVEPreferencePane& pane, const farview::TextWithValue& text)
{
    return farview::filledText(pane.localized(text.text), text.value);
}

void showButton(const FVEPreferencePane& pane, Button& button, const std::string& title)
{
    button.setHidden(title.empty());
    if (!title.empty())
        button.setTitle(pane.localized(title));
}

} // namespace

std::span<const farview::Outlet> FVEUpdateSheetController::outlets() const { return outletTable; }

bool FVEUpdateSheetController::respondsTo(Selector selector) const
{
    return farview::findOperation<Sheet>(operations, selector) != nullptr;
}

bool FVEUpdateSheetController::perform(Selector selector, Object* argument)
{
    const auto* operation = farview::findOperation<Sheet>(operations, selector);
    if (!operation)
        return false;
    operation->call(*this, argument);
    return true;
}

bool FVEUpdateSheetController::loadNib(const FVEPreferencePane& pane, std::string& error)
{
    if (updatePanel())
        return true;
    error = "nothing loads it";
    const auto& loader = pane.interfaceLoader();
    if (loader && loader->loadNibNamed("SoftwareUpdate", shared_from_this(), error))
        return true;
    updatePanel.set(nullptr);
    return false;
}

bool FVEUpdateSheetController::open(const FVEPreferencePane& pane, std::string& error)
{
    if (!loadNib(pane, error))
        return false;
    updatePanel()->beginSheet(pane.tabView());
    return true;
}

void FVEUpdateSheetController::show(const FVEPreferencePane& pane,
                                    const farview::UpdateStatus& status,
                                    const std::string& ownVersion)
{
    if (!updatePanel())
        return;
    const auto display = farview::updateSheetDisplay(status, ownVersion);
    headlineText()->setStringValue(inWords(pane, display.headline));
    const std::string remedy = pane.localized(display.remedy);
    detailText()->setStringValue(inWords(pane, display.detail) +
                                 (remedy.empty() ? remedy : "\n" + remedy));
    notesText()->setStringValue(status.notes);
    notesArea()->setHidden(!display.showsNotes);
    updateProgress()->setHidden(!display.isBusy);
    display.isBusy ? updateProgress()->startAnimation() : updateProgress()->stopAnimation();
    showButton(pane, *firstButton(), display.firstButton);
    showButton(pane, *secondButton(), display.secondButton);
    secondButton()->setEnabled(display.canBeLeft);
}

void FVEUpdateSheetController::close()
{
    if (!isOpen())
        return;
    updateProgress()->stopAnimation();
    updatePanel()->endSheet(returnCodeClosed);
    updatePanel()->orderOut();
}

void FVEUpdateSheetController::firstButtonPressed(Object* /*sender*/) { choose(Choice::first); }
void FVEUpdateSheetController::secondButtonPressed(Object* /*sender*/) { choose(Choice::second); }

void FVEUpdateSheetController::choose(Choice choice)
{
    const auto keptAlive = shared_from_this();
    mHandler(choice);
}
