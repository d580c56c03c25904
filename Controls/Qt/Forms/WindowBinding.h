#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Window.h"

namespace farview
{

class SheetWidget;

/// A window of its own. The desktop puts it in the middle of the window that it stands beside, and
/// keeps both on one space. The widget goes when the window is closed.
class WindowBinding : public Binding
{
    Q_OBJECT

public:
    WindowBinding(std::shared_ptr<Window> window, SheetWidget* widget);

protected:
    void show(Change change) override;
    bool isHidden() const override;

private:
    void open();

    std::shared_ptr<Window> mWindow;
    SheetWidget* mWidget;
    bool mWasShown = false;
};

} // namespace farview
