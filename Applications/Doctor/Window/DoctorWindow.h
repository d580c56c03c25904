#pragma once

#include "Applications/Doctor/Report.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

#include <functional>
#include <string>

namespace farview
{

/// The window of the diagnosis: how far it is, then the report, to be copied and saved. Closing it
/// breaks the diagnosis off.
class DoctorWindow final : public QWidget
{
public:
    struct Actions {
        Translate translate;
        std::function<void()> examineAgain;
        std::function<void()> closed;
    };

    explicit DoctorWindow(Actions actions);

    /// A run has begun.
    void showBeginning();
    /// It looks at that area now.
    void showArea(Area area);
    void showReport(const Report& report);

    /// Writes the report into that file, whole: as JSON when its name ends so, else as text. False
    /// when that failed; the window then says so.
    bool saveAs(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    QPushButton* addButton(QBoxLayout& row, const char* objectName, const char* title,
                           void (DoctorWindow::*pressed)());
    void copy();
    void askWhereToSave();
    void showOutcome(const QString& outcome);
    void closeWindow();
    void examineAgain();
    void setFinished(bool isFinished);
    QString text(const char* key) const;

    Actions mActions;
    Report mReport;
    QLabel* mVerdict;
    QProgressBar* mProgress;
    QPlainTextEdit* mText;
    QLabel* mOutcome; ///< of copying and saving
    QPushButton* mCopy;
    QPushButton* mSave;
    QPushButton* mAgain;
};

} // namespace farview
