#include "Applications/Preferences/HostWindow.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>

namespace
{

/// What a page needs at that width, the parts included that would scroll for want of room.
int heightForPage(const QWidget& page, int width)
{
    int height = page.minimumSizeHint().height();
    if (const QLayout* layout = page.layout(); layout && layout->hasHeightForWidth())
        height = layout->totalMinimumHeightForWidth(width);
    for (const auto* area : page.findChildren<QScrollArea*>()) {
        if (!area->widget())
            continue;
        const QWidget& content = *area->widget();
        // Layouts inside layouts learn of changes with the next turn only, or now.
        if (content.layout())
            content.layout()->activate();
        const int whole = std::max(content.sizeHint().height(), content.heightForWidth(width));
        height += std::max(0, whole - area->minimumSizeHint().height());
    }
    return height;
}

/// Tabs do not tell how high their pages must be where texts wrap, so each page is asked.
int heightForPages(const QTabWidget& tabs, const QWidget& view, int width)
{
    QSize largest;
    for (int i = 0; i < tabs.count(); ++i)
        largest = largest.expandedTo(tabs.widget(i)->minimumSizeHint());
    const QSize around = view.minimumSizeHint() - largest;
    int height = 0;
    for (int i = 0; i < tabs.count(); ++i)
        height = std::max(height, heightForPage(*tabs.widget(i), width - around.width()));
    return height + around.height();
}

/// The toolkit tells assistive technology that a window without a frame of its kinds is nothing.
QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object)
{
    auto* window = qobject_cast<HostWindow*>(object);
    return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

} // namespace

HostWindow::HostWindow() : mLayout(new QVBoxLayout(this)), mBack(new QToolButton(this))
{
    QAccessible::installFactory(makeAccessible);
    mLayout->setContentsMargins(0, 0, 0, 0);
    mLayout->setSpacing(0);
    mLayout->addWidget(mBack, 0, Qt::AlignLeading);
    mBack->setObjectName(u"backButton"_qs);
    mBack->setAutoRaise(true);
    mBack->setFocusPolicy(Qt::StrongFocus);
    mBack->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    mBack->hide();
    connect(mBack, &QToolButton::clicked, this, &HostWindow::goingBack);
}

QSize HostWindow::firstSize(const QWidget& view)
{
    const QSize available = view.screen()->availableSize();
    const QSize size = view.size().expandedTo(view.sizeHint()).boundedTo(available);
    int height = view.layout() ? view.layout()->totalMinimumHeightForWidth(size.width()) : 0;
    for (const auto* tabs : view.findChildren<QTabWidget*>())
        height = std::max(height, heightForPages(*tabs, view, size.width()));
    return size.expandedTo({0, height});
}

void HostWindow::setView(QWidget* view, const QString& title, const QString& back)
{
    if (mView) {
        mLayout->removeWidget(mView);
        mView->hide();
    }
    mView = view;
    // A pane whose language is written the other way turns the window around it.
    const bool hasDirection = view->testAttribute(Qt::WA_SetLayoutDirection);
    setLayoutDirection(hasDirection ? view->layoutDirection() : QApplication::layoutDirection());
    showBack(back);
    QSize wanted = firstSize(*view);
    mLayout->addWidget(view, 1);
    view->show();
    setWindowTitle(title);
    if (!back.isEmpty())
        wanted.rheight() += mBack->sizeHint().height();
    if (isVisible())
        wanted = size().expandedTo(wanted);
    resize(wanted.boundedTo(screen()->availableSize()));
}

void HostWindow::showBack(const QString& title)
{
    mBack->setText(QString(title).replace(u'&', u"&&"_qs));
    mBack->setArrowType(isRightToLeft() ? Qt::RightArrow : Qt::LeftArrow);
    mBack->setShortcut(QKeySequence::Back); // a new text takes the shortcut away
    mBack->setVisible(!title.isEmpty());
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
