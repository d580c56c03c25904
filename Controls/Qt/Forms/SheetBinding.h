#pragma once

#include "Controls/Panel.h"
#include "Controls/Qt/Binding.h"

namespace farview
{

class SheetWidget;

/// A panel that is shown as a sheet. It is on screen exactly while it is a sheet.
class SheetBinding : public Binding
{
    Q_OBJECT

public:
    SheetBinding(std::shared_ptr<Panel> panel, SheetWidget* sheet);

protected:
    void show(Change change) override;
    bool isHidden() const override;

private:
    std::shared_ptr<Panel> mPanel;
    SheetWidget* mSheet;
};

} // namespace farview
