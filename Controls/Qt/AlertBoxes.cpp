#include "Controls/Qt/AlertBoxes.h"

#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Text/PlainText.h"

#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace farview
{
namespace
{

QMessageBox::Icon iconFor(Alert::Style style)
{
    switch (style) {
    case Alert::Style::informational:
        return QMessageBox::Information;
    case Alert::Style::critical:
        return QMessageBox::Critical;
    case Alert::Style::warning:
        break;
    }
    return QMessageBox::Warning;
}

void addButtons(QMessageBox& box, const std::vector<std::string>& titles)
{
    for (const auto& title : titles) {
        const bool isFirst = &title == &titles.front();
        const auto role = isFirst ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        auto* button = box.addButton(plainMenuText(title), role);
        if (isFirst)
            box.setDefaultButton(button);
        box.setEscapeButton(button);
    }
}

QMessageBox* makeBox(const Alert& alert, QWidget* window)
{
    auto* box = new QMessageBox(iconFor(alert.style), window ? window->windowTitle() : QString(),
                                plainText(alert.messageText), QMessageBox::NoButton, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (window)
        box->setLayoutDirection(window->layoutDirection());
    box->setInformativeText(plainText(alert.informativeText));
    addButtons(*box, alert.buttons);
    for (auto* label : box->findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    return box;
}

int returnCode(const QMessageBox& box)
{
    const auto buttons = box.buttons();
    const auto index = buttons.indexOf(box.clickedButton());
    // Closing the window presses the last button, but only after it said that it is finished.
    return Alert::firstButtonReturn + static_cast<int>(index < 0 ? buttons.size() - 1 : index);
}

} // namespace

Subscription AlertBoxes::beginSheet(const Alert& alert, const std::shared_ptr<View>& view,
                                    DidEnd didEnd)
{
    const QWidget* shown = Binding::widgetShowing(*view);
    const QPointer<QMessageBox> box = makeBox(alert, shown ? shown->window() : nullptr);
    QObject::connect(box, &QDialog::finished, box,
                     [box, didEnd = std::move(didEnd)] { didEnd(returnCode(*box)); });
    box->open();
    return Subscription([box] {
        if (!box)
            return;
        box->disconnect();
        box->hide();
        box->deleteLater();
    });
}

} // namespace farview
