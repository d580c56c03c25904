#pragma once

#include <QPointer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>

/// The window around a pane's view, with a way back to the pane that was shown before.
class HostWindow : public QWidget
{
    Q_OBJECT

public:
    HostWindow();

    /// The size at which a view is shown first: the file's, or more where its texts need more.
    static QSize firstSize(const QWidget& view);
    /// Shows that view instead of the one before, which stays its owner's. `back`: the title of the
    /// pane that the button above the view leads to; without one there is no button.
    void setView(QWidget* view, const QString& title, const QString& back);
    /// Comes to the front. `activationToken`: what the desktop gave to whoever asked for it.
    void bringToFront(const QString& activationToken);
    /// Says what went wrong, in plain text, without waiting for an answer.
    void showProblem(const QString& message);

signals:
    /// The user closes the window; its view is still on show.
    void closing();
    /// The user wants the pane before.
    void goingBack();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void showBack(const QString& title);

    QVBoxLayout* mLayout;
    QToolButton* mBack;
    QPointer<QWidget> mView;
};
