#include "Applications/Preferences/HostWindow.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QTimer>

#include <algorithm>

HostWindow::HostWindow() : mLayout(new QVBoxLayout(this))
{
    mLayout->setContentsMargins(0, 0, 0, 0);
}

QSize HostWindow::firstSize(const QWidget& view)
{
    QSize size = view.size().expandedTo(view.sizeHint());
    if (const QLayout* layout = view.layout())
        size.setHeight(std::max(view.height(), layout->totalMinimumHeightForWidth(size.width())));
    return size;
}

void HostWindow::setView(QWidget* view, const QString& title)
{
    while (QLayoutItem* item = mLayout->takeAt(0)) {
        item->widget()->hide();
        delete item;
    }
    const QSize wanted = firstSize(*view);
    mLayout->addWidget(view);
    view->show();
    setWindowTitle(title);
    if (!isVisible())
        resize(wanted);
}

void HostWindow::bringToFront(const QString& activationToken)
{
    // Where windows may not take the focus by themselves, this is how it is handed to them.
    if (!activationToken.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
        QTimer::singleShot(0, this, [] { qunsetenv("XDG_ACTIVATION_TOKEN"); });
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void HostWindow::showProblem(const QString& message)
{
    auto* box =
        new QMessageBox(QMessageBox::Warning, windowTitle(), QString(), QMessageBox::Close, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setText(message);
    box->open();
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    emit closing();
    QWidget::closeEvent(event);
}
