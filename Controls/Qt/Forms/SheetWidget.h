#pragma once

#include <QDialog>

namespace farview
{

/// The window of a sheet, or a small one beside another. Escape presses the button that cancels:
/// the one that the interface file marks with the dynamic property "cancels". So does a sheet's own
/// close button; a window beside another just closes.
class SheetWidget : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;

    /// Shows it on that window, which takes no input meanwhile; without one, by itself. The window
    /// owns it from then on.
    void openOn(QWidget* window);
    /// Shows it beside that window, which goes on taking input and owns it from then on.
    void openBeside(QWidget* window);

    void reject() override;

Q_SIGNALS:
    /// The user closed the window beside another with its close button.
    void closedByUser();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void prepare(QWidget* window);
    void growToFit();
    void takeKeyboard();
    void focusFirstTabStop();
};

} // namespace farview
