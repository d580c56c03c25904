#pragma once

#include "Controls/Panel.h"
#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Window.h"

#include <memory>
#include <utility>

namespace farview
{

/// A panel that is shown as a sheet. It is on screen exactly while it is a sheet.
class SheetBinding : public Binding
{
public:
    SheetBinding(std::shared_ptr<Panel> panel, SheetWidget* sheet)
        : Binding(panel, sheet), mPanel(std::move(panel)), mSheet(sheet)
    {
    }

protected:
    void show(Change change) override
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

    // Being shown is the sheet's own business, not that of every control.
    bool isHidden() const override { return mSheet->isHidden(); }

private:
    std::shared_ptr<Panel> mPanel;
    SheetWidget* mSheet;
};

/// A window of its own. The desktop puts it in the middle of the window that it stands beside, and
/// keeps both on one space. The widget goes when the window is closed.
class WindowBinding : public Binding
{
public:
    WindowBinding(std::shared_ptr<Window> window, SheetWidget* widget)
        : Binding(window, widget), mWindow(std::move(window)), mWidget(widget)
    {
        connect(widget, &SheetWidget::closedByUser, this, [this] { mWindow->close(); });
    }

protected:
    void show(Change /*change*/) override
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

    // Being shown is the window's own business, not that of every control.
    bool isHidden() const override { return mWidget->isHidden(); }

private:
    void open()
    {
        const auto view = mWindow->besideView();
        QWidget* beside = view ? widgetShowing(*view) : nullptr;
        mWidget->openBeside(beside ? beside->window() : nullptr);
    }

    std::shared_ptr<Window> mWindow;
    SheetWidget* mWidget;
    bool mWasShown = false;
};

} // namespace farview
