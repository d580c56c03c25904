#pragma once

#include "Controls/Menu.h"
#include "Controls/Qt/Binding.h"

class QAction;
class QMenu;

namespace farview
{

class PopUpWidget;

/// A pop-up button. The menu on screen is built when it opens and stays as it is while it is open,
/// however often the control's menu is replaced meanwhile.
class PopUpBinding : public Binding
{
    Q_OBJECT

public:
    PopUpBinding(std::shared_ptr<PopUpButton> button, PopUpWidget* widget);

protected:
    void show(Change change) override;

private:
    void open();
    void choose(const std::shared_ptr<MenuItem>& item);
    QAction* addEntry(QMenu* menu, const std::shared_ptr<MenuItem>& item);
    bool someEntryIsMarked() const;

    std::shared_ptr<PopUpButton> mButton;
    PopUpWidget* mPopUp;
};

} // namespace farview
