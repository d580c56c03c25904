#pragma once

#include "Controls/InterfaceOwner.h"
#include "Controls/Panel.h"
#include "Platform/Types/Object.h"
#include "Platform/Types/UpdateStatus.h"

#include <functional>
#include <memory>
#include <span>
#include <string>

class FVEPreferencePane;

/// The sheet that tells of an update and asks about it. It hangs on the panel, so nothing starts
/// the programs of the bundle while the bundle is replaced. Knows nothing of the updater: it shows
/// a status and tells which button was pressed. Made with `std::make_shared`; main thread only.
class FVEUpdateSheetController : public farview::InterfaceOwner,
                                 public farview::Object,
                                 public std::enable_shared_from_this<FVEUpdateSheetController>
{
public:
    enum class Choice {
        first, ///< goes on
        second ///< leaves it
    };
    using Handler = std::function<void(Choice)>;

    /// `handler` is called for each press of a button.
    explicit FVEUpdateSheetController(Handler handler) : mHandler(std::move(handler)) {}

    std::span<const farview::Outlet> outlets() const override;
    bool respondsTo(farview::Selector selector) const override;
    bool perform(farview::Selector selector, farview::Object* argument) override;

    /// Opens the sheet on the pane's window. False when it cannot be loaded; `error` then says why.
    bool open(const FVEPreferencePane& pane, std::string& error);
    bool isOpen() const { return updatePanel() && updatePanel()->isSheet(); }
    void show(const FVEPreferencePane& pane, const farview::UpdateStatus& status,
              const std::string& ownVersion);
    void close();

    void firstButtonPressed(farview::Object* sender);
    void secondButtonPressed(farview::Object* sender);

    // Outlets.
    farview::OutletProperty<farview::Panel> updatePanel;
    farview::OutletProperty<farview::TextField> headlineText;
    farview::OutletProperty<farview::TextField> detailText;
    farview::OutletProperty<farview::View> notesArea;
    farview::OutletProperty<farview::TextField> notesText;
    farview::OutletProperty<farview::ProgressIndicator> updateProgress;
    farview::OutletProperty<farview::Button> firstButton;
    farview::OutletProperty<farview::Button> secondButton;

private:
    bool loadNib(const FVEPreferencePane& pane, std::string& error);
    void choose(Choice choice);

    Handler mHandler;
};
