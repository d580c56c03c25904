#pragma once

#include <QDialog>

namespace farview
{

/// The window of a sheet. Escape and the window's own close button press the button that cancels:
/// the one that the interface file marks with the dynamic property "cancels".
class SheetWidget : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;

    /// Shows it on that window, which takes no input meanwhile; without one, by itself. The window
    /// owns it from then on.
    void openOn(QWidget* window);

    void reject() override;

private:
    void growToFit();
    void focusFirstTabStop();
};

} // namespace farview
