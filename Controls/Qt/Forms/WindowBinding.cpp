#include "Controls/Qt/Forms/WindowBinding.h"

#include "Controls/Qt/Forms/SheetWidget.h"

namespace farview
{

WindowBinding::WindowBinding(std::shared_ptr<Window> window, SheetWidget* widget)
    : Binding(window, widget), mWindow(std::move(window)), mWidget(widget)
{
    connect(widget, &SheetWidget::closedByUser, this, [this] { mWindow->close(); });
}

// Being shown is the window's own business, not that of every control.
bool WindowBinding::isHidden() const { return mWidget->isHidden(); }

void WindowBinding::show(Change /*change*/)
{
    if (mWindow->isVisible() == mWasShown)
        return;
    mWasShown = mWindow->isVisible();
    if (mWasShown)
        return open();
    mWidget->hide();
    // Not now: closing may be the answer to a click in it.
    mWidget->deleteLater();
}

void WindowBinding::open()
{
    const auto view = mWindow->besideView();
    QWidget* beside = view ? widgetShowing(*view) : nullptr;
    mWidget->openBeside(beside ? beside->window() : nullptr);
}

} // namespace farview
