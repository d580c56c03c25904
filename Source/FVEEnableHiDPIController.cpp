#include "Source/FVEEnableHiDPIController.h"

#include "Controls/OperationTable.h"
#include "Platform/Log.h"
#include "Platform/Platform.h"
#include "Source/FVEPreferencePane.h"

#include <array>

using farview::Object;
using farview::Selector;

namespace
{

using Controller = FVEEnableHiDPIController;

template <auto method> constexpr auto action(std::string_view name)
{
    return farview::action<method, Controller>(name);
}

constexpr auto operations = std::to_array<farview::Operation<Controller>>({
    action<&Controller::takeOK>("takeOK:"),
    action<&Controller::takeCancel>("takeCancel:"),
    action<&Controller::windowWillClose>("windowWillClose:"),
});

constexpr auto outletTable = std::to_array<farview::Outlet>({
    farview::outlet<&Controller::window>("window"),
    farview::outlet<&Controller::explanationText>("explanationText"),
    farview::outlet<&Controller::progressText>("progressText"),
    farview::outlet<&Controller::okButton>("okButton"),
    farview::outlet<&Controller::cancelButton>("cancelButton"),
});

} // namespace

FVEEnableHiDPIController::~FVEEnableHiDPIController()
{
    setOkButton(nullptr);
    setCancelButton(nullptr);
    setHandlerBlock(nullptr);
}

std::span<const farview::Outlet> FVEEnableHiDPIController::outlets() const { return outletTable; }

bool FVEEnableHiDPIController::respondsTo(Selector selector) const
{
    return farview::findOperation<Controller>(operations, selector) != nullptr;
}

bool FVEEnableHiDPIController::perform(Selector selector, Object* argument)
{
    const auto* operation = farview::findOperation<Controller>(operations, selector);
    if (!operation)
        return false;
    operation->call(*this, argument);
    return true;
}

void FVEEnableHiDPIController::init() { mWindowNibName = "EnableHiDPI"; }

bool FVEEnableHiDPIController::loadWindow(Object* sender)
{
    if (window())
        return true;
    const auto* pane = dynamic_cast<FVEPreferencePane*>(sender);
    std::string error = "nothing loads it";
    const auto loader = pane ? pane->interfaceLoader() : nullptr;
    if (!loader || !loader->loadNibNamed(mWindowNibName, shared_from_this(), error)) {
        mPlatform.log->write(farview::LogLevel::warning,
                             "Cannot open the window for HiDPI resolutions: " + error);
        window.set(nullptr);
        return false;
    }
    windowDidLoad();
    return true;
}

bool FVEEnableHiDPIController::showWindow(Object* sender, HandlerBlock handler)
{
    setHandlerBlock(std::move(handler));
    if (!loadWindow(sender))
        return false;
    window()->orderFront(dynamic_cast<FVEPreferencePane&>(*sender).tabView());
    return true;
}

void FVEEnableHiDPIController::windowDidLoad()
{
    window()->setDelegate(weak_from_this());
    window()->center();
    window()->setCollectionBehavior(farview::Window::canJoinAllSpaces);
}

void FVEEnableHiDPIController::close()
{
    if (window())
        window()->close();
}

void FVEEnableHiDPIController::takeOK(Object* /*sender*/) { callHandler(true); }
void FVEEnableHiDPIController::takeCancel(Object* /*sender*/) { callHandler(false); }
void FVEEnableHiDPIController::windowWillClose(Object* /*sender*/) {}

void FVEEnableHiDPIController::callHandler(bool confirmed)
{
    // The handler may let go of this controller, and with it of the handler.
    const auto keptAlive = weak_from_this().lock();
    if (const auto handler = handlerBlock())
        handler(confirmed);
}

void FVEEnableHiDPIController::showProgress(const std::string& text, farview::TextField::Role role)
{
    progressText()->setStringValue(text);
    progressText()->setTextRole(role);
}

void FVEEnableHiDPIController::setEnabled(bool enabled)
{
    okButton()->setEnabled(enabled);
    cancelButton()->setEnabled(enabled);
}
