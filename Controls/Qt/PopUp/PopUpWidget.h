#pragma once

#include <QAbstractButton>
#include <QMenu>
#include <QPointer>

class QStyleOptionComboBox;

namespace farview
{

/// A button that shows a title and opens a menu. Looks like the desktop's combo boxes; unlike them,
/// neither the wheel nor the arrow keys change anything while it is closed: they open it.
class PopUpWidget : public QAbstractButton
{
    Q_OBJECT

public:
    explicit PopUpWidget(QWidget* parent);

    const QString& title() const { return mTitle; }
    /// Plain text; cut with an ellipsis when it does not fit.
    void setTitle(const QString& title);

    /// Opens the menu below the button and returns at once. Takes the menu over and deletes it once
    /// it has hidden.
    void open(QMenu* menu, QAction* current);
    /// The menu on screen; null while closed.
    QMenu* openMenu() const { return mMenu; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user wants to see the menu.
    void openRequested();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void request();
    QPoint menuPlace(const QMenu& menu) const;
    QStyleOptionComboBox styleOption() const;
    QSize sizeFor(int textWidth) const;

    QString mTitle;
    QPointer<QMenu> mMenu;
};

} // namespace farview
