#pragma once

#include "Platform/Types/Subscription.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace farview
{

class View;

/// A question or a warning that the user answers with one of its buttons. Texts are plain text in
/// the user's language.
struct Alert {
    enum class Style { warning = 0, informational = 1, critical = 2 };

    /// What the first button answers; each further one answers one more.
    static constexpr int firstButtonReturn = 1000;
    static constexpr int secondButtonReturn = 1001;

    std::string messageText;
    std::string informativeText;
    /// At least one. The first is what the return key presses, the last what escape presses.
    std::vector<std::string> buttons;
    Style style = Style::warning;
};

/// Shows alerts, each as a sheet: on a window that takes no input meanwhile.
class AlertPresenter
{
public:
    using DidEnd = std::function<void(int returnCode)>;

    virtual ~AlertPresenter() = default;

    /// Shows the alert on the window that `view` is in, and returns at once. `didEnd` is called
    /// once, when the user has answered. Ending the subscription takes the alert off the screen
    /// unanswered; a window that goes takes its alert along.
    virtual Subscription beginSheet(const Alert& alert, const std::shared_ptr<View>& view,
                                    DidEnd didEnd) = 0;
};

} // namespace farview
